// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Repeats with their alignments to unfold. Columns that do not match are marked.

const columnsInBlock = 80;

function markedRow(row, matches) {
  const parts = [];
  for (let at = 0; at < row.length;) {
    const isMatch = matches[at] === "|";
    let end = at + 1;
    while (end < row.length && (matches[end] === "|") === isMatch) ++end;
    const piece = row.slice(at, end);
    parts.push(isMatch ? piece : make("mark", {}, piece));
    at = end;
  }
  return parts;
}

function alignmentElement(repeat) {
  if (repeat.alignment.length === 0) {
    return make("p", {class: "soft"}, "The report shows no alignments.");
  }
  const block = make("pre", {tabindex: "0"});
  const [sequence, matches] = repeat.alignment;
  for (let at = 0; at < sequence.length; at += columnsInBlock) {
    if (at > 0) block.append("\n");
    repeat.alignment.forEach((row, line) => {
      const piece = row.slice(at, at + columnsInBlock);
      const isMarked = matches !== undefined && line !== 1;
      block.append(...(isMarked ? markedRow(piece, matches.slice(at, at + columnsInBlock)) : [piece]), "\n");
    });
  }
  const isCut = repeat.columns > sequence.length;
  return make("div", {}, block, isCut
    ? make("p", {class: "soft"}, `The first ${shown(sequence.length)} of ${shown(repeat.columns)} columns.`) : null);
}

function repeatText(repeat, sequence) {
  const score = repeat.score === null ? "" : `, score ${shown(repeat.score)}`;
  return `${sequence}:${shown(repeat.start)}-${shown(repeat.end)}, ${plural(repeat.bases, "base")}, `
    + `(${shortened(repeat.unit, 30) || plural(repeat.unit_length, "base")})${shown(repeat.copies)}, ${percentText(repeat.perfection)} perfect${score}`;
}

function repeatList(repeats, sequence = null) {
  if (repeats.length === 0) return make("p", {class: "soft"}, "There are none.");
  const note = paperNote("Of alignments, those are printed that are unfolded on the page.");
  return make("div", {}, note, make("ol", {class: "repeats"}, ...repeats.map((repeat) => {
    const details = make("details", {}, make("summary", {}, repeatText(repeat, sequence ?? repeat.sequence)));
    details.addEventListener("toggle", () => {
      if (details.open && details.children.length === 1) details.append(alignmentElement(repeat));
    });
    return make("li", {}, details);
  })));
}
