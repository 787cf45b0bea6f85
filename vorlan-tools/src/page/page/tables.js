// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Tables whose columns sort, with a box that filters; and the same numbers as CSV.
// A column: {title, value: row -> number or text, isText, show: value -> text}.

function quotedCsv(value) {
  const text = value === null || value === undefined ? "" : String(value);
  // A cell that a spreadsheet would take for a formula gets an apostrophe in front.
  const safe = typeof value === "string" && /^[=+\-@\t\r]/.test(text) ? `'${text}` : text;
  return /[",\n\r]/.test(safe) ? `"${safe.replaceAll("\"", "\"\"")}"` : safe;
}

function csvOf(columns, rows) {
  const lines = [columns.map((column) => column.title), ...rows.map((row) => columns.map((column) => column.value(row)))];
  return lines.map((cells) => cells.map(quotedCsv).join(",")).join("\r\n") + "\r\n";
}

function compareValues(a, b) {
  if (a === b) return 0;
  if (a === null || a === undefined) return 1;
  if (b === null || b === undefined) return -1;
  return a < b ? -1 : 1;
}

function rowElement(columns, row) {
  return make("tr", {}, ...columns.map((column) => {
    const value = column.value(row);
    const text = column.show ? column.show(value, row) : column.isText ? value : value === null ? "-" : shown(value);
    return make("td", {class: column.isText ? "text" : "", title: column.isText && text.length > 30 ? text : false}, text);
  }));
}

/// A table element; `filter` names the column that its box looks at.
function sortableTable(columns, rows, {caption = "", label = caption, filter = null} = {}) {
  const body = make("tbody");
  const count = make("caption", {}, caption);
  const heads = columns.map((column, i) => make("th", {scope: "col", class: column.isText ? "text" : ""},
    make("button", {type: "button", onclick: () => sortBy(i)}, column.title)));
  let wanted = "";
  let order = {column: -1, falls: false};

  function fill() {
    let list = rows.filter((row) => !wanted || String(filter.value(row)).toUpperCase().includes(wanted));
    if (order.column >= 0) {
      const {value} = columns[order.column];
      const sign = order.falls ? -1 : 1;
      list = [...list].sort((a, b) => sign * compareValues(value(a), value(b)));
    }
    body.replaceChildren(...list.map((row) => rowElement(columns, row)));
    count.textContent = wanted ? `${caption} ${list.length} of ${rows.length} are shown.` : caption;
  }

  function sortBy(i) {
    const falls = order.column === i ? !order.falls : !columns[i].isText;
    order = {column: i, falls};
    heads.forEach((head, at) => {
      if (at === i) head.setAttribute("aria-sort", falls ? "descending" : "ascending");
      else head.removeAttribute("aria-sort");
    });
    fill();
  }

  fill();
  const table = make("table", {}, count, make("thead", {}, make("tr", {}, ...heads)), body);
  const isCut = rows.length > mostPrintedRows;
  const scroll = make("div", {class: "wide tall", tabindex: "0", role: "region", "aria-label": label}, table, isCut
    ? paperNote(`The first ${mostPrintedRows} of ${shown(rows.length)} rows; the button CSV of the page gives all.`) : null);
  if (!filter) return scroll;
  const box = make("input", {type: "search", placeholder: `Filter: ${filter.title}`, "aria-label": `Filter: ${filter.title}`});
  box.addEventListener("input", () => {
    wanted = box.value.trim().toUpperCase();
    fill();
  });
  return make("div", {}, box, scroll);
}
