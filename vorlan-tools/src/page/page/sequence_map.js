// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// All sequences to scale, in windows coloured by their share of bases in repeats. Classes hold equally
// many windows each, since a single rich sequence would make all others look alike otherwise.

// Few sequences are drawn higher.
const rowHeights = {few: 28, many: 13};
const fewSequences = 4;
const rowGap = 6;
// So that names and numbers on paper are as large as other text.
const paperWidth = 720;
const nameLength = 20;

function windowsOf(genome) {
  const {size, sequences} = genome.windows;
  const names = new Map(genome.by_sequence.map((sequence) => [sequence.index, sequence.name]));
  return sequences.map((sequence) => ({
    name: names.get(sequence.index), length: sequence.length,
    windows: sequence.repeats.map((repeats, i) => {
      const begin = i * size;
      const end = Math.min(begin + size, sequence.length);
      const covered = sequence.covered[i];
      return {name: names.get(sequence.index), begin, end, repeats, covered, percent: share(covered, end - begin) ?? 0,
        longest: sequence.longest[i]};
    }),
  }));
}

/// The upper borders of at most six classes; windows without repeats are a class of their own.
function quantileBorders(values, count) {
  const sorted = values.filter((value) => value > 0).sort((a, b) => a - b);
  const borders = [];
  for (let i = 1; i <= count && sorted.length > 0; ++i) {
    const border = sorted[Math.ceil(i * sorted.length / count) - 1];
    if (border !== borders[borders.length - 1]) borders.push(border);
  }
  return borders;
}

function densityColour(colours, borders, percent) {
  if (percent <= 0) return colours.none;
  const index = borders.findIndex((border) => percent <= border);
  const place = borders.length > 1 ? index / (borders.length - 1) : 1;
  return colours.density[Math.round(place * (colours.density.length - 1))];
}

function windowText(window) {
  return `${window.name}: ${shown(window.begin + 1)}-${shown(window.end)}, ${plural(window.repeats, "repeat")}, `
    + `${shown(window.percent)} % in repeats`;
}

function rowHeightOf(genome) {
  return genome.windows.sequences.length <= fewSequences ? rowHeights.few : rowHeights.many;
}

/// The classes in lines between `left` and `right`; `bottom` is where the last line ends.
function mapLegend(colours, borders, left, right, top) {
  const group = makeSvg("g", {"font-size": 12, fill: colours.soft});
  const steps = [[0, "none"], ...borders.map((border, i) => [border, `${i ? `${shown(borders[i - 1])}-` : "up to "}${shown(border)} %`])];
  let x = left;
  let y = top;
  for (const [border, text] of steps) {
    const width = 34 + 7 * text.length;
    if (x > left && x + width > right) {
      x = left;
      y += 18;
    }
    group.append(makeSvg("rect", {x, y, width: 14, height: 12, fill: densityColour(colours, borders, border), stroke: colours.line}),
      makeSvg("text", {x: x + 19, y: y + 10.5}, text));
    x += width;
  }
  return {group, bottom: y + 12};
}

/// The drawing for a width in pixels, with a rectangle for each window.
function mapDrawing(genome, width, colours) {
  const sequences = windowsOf(genome);
  const borders = quantileBorders(sequences.flatMap(({windows}) => windows.map(({percent}) => percent)), colours.density.length);
  const longest = Math.max(1, ...sequences.map(({length}) => length));
  const names = sequences.map(({name}) => shortened(name, nameLength));
  const labelWidth = 16 + 7.2 * Math.max(2, ...names.map((name) => name.length));
  const scale = (width - labelWidth - 90) / longest;
  const others = genome.other_sequences;
  const rows = sequences.length + (others.sequences > 0 ? 1 : 0);
  const rowHeight = rowHeightOf(genome);
  const rowStep = rowHeight + rowGap;
  const baseline = rowHeight / 2 + 4;
  const svg = makeSvg("svg", {
    xmlns: "http://www.w3.org/2000/svg", "font-family": "sans-serif",
  });
  const tiles = [];
  sequences.forEach((sequence, row) => {
    const y = row * rowStep;
    svg.append(makeSvg("text", {x: labelWidth - 8, y: y + baseline, "text-anchor": "end", "font-size": 12, fill: colours.text},
      names[row]));
    for (const window of sequence.windows) {
      const tile = makeSvg("rect", {
        class: "tile", x: labelWidth + window.begin * scale, y, height: rowHeight,
        width: Math.max((window.end - window.begin) * scale, 0.5), fill: densityColour(colours, borders, window.percent),
      });
      tiles.push({tile, window, row});
      svg.append(tile);
    }
    svg.append(makeSvg("rect", {x: labelWidth, y, width: Math.max(sequence.length * scale, 1), height: rowHeight, fill: "none",
      stroke: colours.line}), makeSvg("text", {x: labelWidth + sequence.length * scale + 6, y: y + baseline, "font-size": 11,
      fill: colours.soft}, sizeOf(sequence.length)));
  });
  if (others.sequences > 0) {
    const y = sequences.length * rowStep;
    svg.append(makeSvg("text", {x: labelWidth, y: y + baseline, "font-size": 12, fill: colours.soft}, othersText(others)));
  }
  const legend = mapLegend(colours, borders, labelWidth, width, rows * rowStep + 14);
  svg.append(legend.group);
  const height = legend.bottom + 8;
  for (const [name, value] of Object.entries({viewBox: `0 0 ${width} ${height}`, width, height})) svg.setAttribute(name, value);
  return {svg, tiles, height};
}

function othersText(others) {
  const density = others.covered_percent === null ? "" : `, ${shown(others.covered_percent)} % in repeats`;
  const size = others.bases === null ? "" : ` with ${sizeOf(others.bases)}`;
  return `${plural(others.sequences, "shorter sequence")}${size}${density}`;
}

function mapColumns() {
  return [{title: "Sequence", value: (row) => row.name, isText: true}, {title: "First base", value: (row) => row.begin + 1},
    {title: "Last base", value: (row) => row.end}, numberColumn("Repeats", "repeats"), numberColumn("Bases in repeats", "covered"),
    numberColumn("%", "percent")];
}

function openWindow(place, window) {
  place.replaceChildren(make("div", {class: "window"}, make("h3", {}, windowText(window)),
    make("p", {class: "soft"}, `The longest of its ${plural(window.repeats, "repeat")}:`), repeatList(window.longest, window.name)));
}

function mapFigure(genome) {
  const place = make("div", {"aria-live": "polite"});
  const holder = make("div", {class: "map wide"});
  let tiles = [];
  let selected = -1;

  function select(index) {
    if (tiles.length === 0) return;
    tiles[selected]?.tile.removeAttribute("stroke");
    selected = Math.max(0, Math.min(index, tiles.length - 1));
    const {tile, window} = tiles[selected];
    tile.setAttribute("stroke", theme().text);
    const box = tile.getBoundingClientRect();
    showTip(windowText(window), box.x, box.y);
  }

  function onKey(event) {
    const row = tiles[selected]?.row ?? 0;
    const rowBegin = (wanted) => tiles.findIndex((tile) => tile.row === wanted);
    const steps = {ArrowRight: () => selected + 1, ArrowLeft: () => selected - 1,
      ArrowDown: () => Math.max(rowBegin(row + 1), selected < 0 ? 0 : rowBegin(row)), ArrowUp: () => Math.max(0, rowBegin(row - 1))};
    if (steps[event.key]) {
      event.preventDefault();
      select(steps[event.key]());
    } else if ((event.key === "Enter" || event.key === " ") && selected >= 0) {
      event.preventDefault();
      openWindow(place, tiles[selected].window);
    }
  }

  function draw() {
    const made = mapDrawing(genome, isPrinting ? paperWidth : Math.max(640, Math.floor(holder.clientWidth || 960)), theme());
    tiles = made.tiles;
    selected = -1;
    const windowOf = new Map(tiles.map(({tile, window}) => [tile, window]));
    made.svg.setAttribute("tabindex", "0");
    made.svg.setAttribute("role", "application");
    made.svg.setAttribute("aria-label", "Windows along the sequences: arrow keys move, Enter lists the longest repeats.");
    made.svg.addEventListener("keydown", onKey);
    made.svg.addEventListener("mousemove", (event) => {
      const window = windowOf.get(event.target);
      if (window) showTip(windowText(window), event.clientX, event.clientY);
      else hideTip();
    });
    made.svg.addEventListener("mouseleave", hideTip);
    made.svg.addEventListener("blur", hideTip);
    made.svg.addEventListener("click", (event) => {
      const window = windowOf.get(event.target);
      if (window) openWindow(place, window);
    });
    holder.replaceChildren(made.svg);
  }

  const savedWidth = 1200;
  const forFile = () => mapDrawing(genome, savedWidth, lightTheme);
  const textOf = ({svg}) => new XMLSerializer().serializeToString(svg);
  const section = figureSection(genome, {
    id: "sequences-map", title: "Along the sequences",
    note: `Share of bases in repeats in windows of ${sizeOf(genome.windows.size)}; each colour holds equally many windows. `
      + "Point at a window for its numbers, click on it for its longest repeats.",
    columns: mapColumns(), rows: windowsOf(genome).flatMap(({windows}) => windows),
  }, make("div", {}, holder, place), {
    svg: () => textOf(forFile()),
    png: () => {
      const drawing = forFile();
      return svgAsPng(textOf(drawing), savedWidth, drawing.height);
    },
  });
  return {section, draw};
}
