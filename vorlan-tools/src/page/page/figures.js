// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// A figure: heading, drawing, its numbers as a table, and buttons that save all of them.

const liveCharts = [];

function heading(title, note) {
  return [make("h2", {}, title), note ? make("p", {class: "soft"}, note) : null];
}

function saveButton(label, action) {
  return make("button", {type: "button", onclick: action}, label);
}

function figureSection(genome, {id, title, note, isHalf, columns, rows}, drawing, savers) {
  const holder = make("div");
  const toggle = saveButton("Numbers", () => {
    const isOpen = toggle.getAttribute("aria-expanded") === "true";
    toggle.setAttribute("aria-expanded", String(!isOpen));
    holder.replaceChildren(...(isOpen ? [] : [sortableTable(columns, rows, {caption: title})]));
  });
  toggle.setAttribute("aria-expanded", "false");
  printNumbers(holder, columns, rows, title);
  const buttons = make("div", {class: "tools"}, toggle,
    saveButton("CSV", () => save(fileName(genome, id, "csv"), "text/csv", csvOf(columns, rows))),
    saveButton("SVG", () => save(fileName(genome, id, "svg"), "image/svg+xml", savers.svg())),
    saveButton("PNG", async () => save(fileName(genome, id, "png"), "image/png", await savers.png())));
  return make("section", {id, class: isHalf ? "half" : ""}, ...heading(title, note), drawing, buttons, holder);
}

const savedSize = [960, 480];

/// The SVG text of a chart, in light colours.
function chartAsSvg(configure) {
  const [width, height] = savedSize;
  const canvas = make("canvas", {width, height});
  const recorder = new SvgRecorder(canvas, width, height);
  canvas.getContext = () => recorder;
  const chart = new Chart(canvas, stillConfig(configure(lightTheme)));
  recorder.parts = [];
  chart.draw();
  const text = recorder.text();
  chart.destroy();
  return text;
}

function chartAsPng(configure) {
  const [width, height] = savedSize;
  const canvas = make("canvas", {width, height});
  const config = stillConfig(configure(lightTheme));
  config.options.devicePixelRatio = 2;
  config.plugins = [{
    id: "ground",
    beforeDraw: ({ctx, width: w, height: h}) => {
      ctx.fillStyle = lightTheme.ground;
      ctx.fillRect(0, 0, w, h);
    },
  }];
  const chart = new Chart(canvas, config);
  return new Promise((done) => canvas.toBlob((blob) => {
    chart.destroy();
    done(blob);
  }));
}

function stillConfig(config) {
  Object.assign(config.options, {responsive: false, animation: false, devicePixelRatio: 1});
  return config;
}

function svgAsPng(text, width, height) {
  return new Promise((done, fail) => {
    const image = new Image();
    image.onload = () => {
      const canvas = make("canvas", {width: 2 * width, height: 2 * height});
      canvas.getContext("2d").drawImage(image, 0, 0, 2 * width, 2 * height);
      canvas.toBlob(done);
    };
    image.onerror = fail;
    image.src = `data:image/svg+xml;charset=utf-8,${encodeURIComponent(text)}`;
  });
}

/// A figure drawn by Chart.js; `configure` makes its settings for a theme.
function chartFigure(genome, about, configure) {
  const canvas = make("canvas", {role: "img", "aria-label": `${about.title}. The button Numbers shows its table.`});
  const section = figureSection(genome, about, make("div", {class: "canvas"}, canvas),
    {svg: () => chartAsSvg(configure), png: () => chartAsPng(configure)});
  liveCharts.push({canvas, configure, chart: null});
  return section;
}

function drawCharts() {
  for (const live of liveCharts) {
    live.chart?.destroy();
    const config = live.configure(theme());
    if (isPrinting) config.options.devicePixelRatio = 2;
    live.chart = new Chart(live.canvas, config);
  }
}

function forgetCharts() {
  for (const live of liveCharts) live.chart?.destroy();
  liveCharts.length = 0;
  printedParts.length = 0;
}
