// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// On paper nothing can be pointed at, unfolded or sorted. What a chart shows to the pointer is printed
// as a table if that is short; what is left out is said. See also @media print in page.css.

const mostPrintedRows = 40;

// Called in front of printing, each returns what takes its changes back.
const printedParts = [];
let takeBack = [];

function prepareForPaper() {
  takeBack = printedParts.map((part) => part());
}

function leavePaper() {
  for (const undo of takeBack) undo();
  takeBack = [];
}

/// A note that stands on paper only.
function paperNote(text) {
  return make("p", {class: "soft paper"}, text);
}

/// The numbers of a chart, unless their table is open on the screen.
function printNumbers(holder, columns, rows, title) {
  printedParts.push(() => {
    if (holder.children.length > 0) return () => {};
    holder.append(rows.length <= mostPrintedRows
      ? sortableTable(columns, rows, {caption: title})
      : paperNote(`Its numbers are ${shown(rows.length)} rows; the buttons Numbers and CSV of the page give them.`));
    return () => holder.replaceChildren();
  });
}

/// Details that paper shows unfolded.
function printUnfolded(details) {
  printedParts.push(() => {
    const wasOpen = details.open;
    details.open = true;
    return () => {
      details.open = wasOpen;
    };
  });
  return details;
}
