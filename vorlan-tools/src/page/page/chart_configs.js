// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// What is common to the charts: axes, legend, hints, all in the colours of a theme.

function axis(colours, title, more = {}) {
  return {
    title: {display: true, text: title, color: colours.soft},
    ticks: {color: colours.soft, maxRotation: 60, autoSkip: true, ...more.ticks},
    grid: {color: colours.line, borderColor: colours.line},
    ...Object.fromEntries(Object.entries(more).filter(([key]) => key !== "ticks")),
  };
}

function chartConfig(colours, {type = "bar", labels, datasets, x, y, stacked = false, logarithmic = false, unit = ""}) {
  const short = (value) => Intl.NumberFormat("en-GB", {notation: "compact", maximumFractionDigits: 2}).format(value);
  const leading = (value) => Math.round(value / 10 ** Math.floor(Math.log10(value)));
  const largest = Math.max(1, ...datasets.flatMap((set) => set.data.map((value) => value ?? 0)));
  const labelled = largest < 200 ? [1, 2, 5] : [1];
  const ticks = {...(y === "Repeats" || y === "Bases" ? {precision: 0} : {}), callback: (value) => (logarithmic && !labelled.includes(leading(value)) ? "" : short(value))};
  return {
    type,
    data: {labels, datasets},
    options: {
      animation: false, responsive: true, maintainAspectRatio: false,
      interaction: {mode: "index", intersect: false},
      scales: {
        x: axis(colours, x, {stacked}),
        y: axis(colours, y, {stacked, ticks, ...(logarithmic ? {type: "logarithmic", min: 0.8, suggestedMax: 1.6 * largest} : {beginAtZero: true})}),
      },
      plugins: {
        legend: {display: datasets.length > 1, labels: {color: colours.text, boxWidth: 14, usePointStyle: type === "line"}},
        tooltip: {
          filter: (item) => item.parsed.y > 0,
          callbacks: {
            title: ([item]) => (item ? `${x}: ${item.label}` : ""),
            label: (item) => `${item.dataset.label}: ${shown(item.parsed.y)}${unit}`,
          },
        },
      },
    },
  };
}

function barsOf(label, data, colour) {
  return {label, data, backgroundColor: colour, borderWidth: 0};
}

/// A table column for a number; `key` is its key in JSON or what computes it.
function numberColumn(title, key) {
  return {title, value: typeof key === "function" ? key : (row) => row[key]};
}
