// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

const wholeNumbers = new Intl.NumberFormat("en-GB");

/// A number for people: all digits of whole numbers, three significant ones of others.
function shown(value) {
  if (value === null || value === undefined) return "not known";
  if (Number.isInteger(value)) return wholeNumbers.format(value);
  const digits = Math.abs(value) >= 100 ? 0 : Math.abs(value) >= 10 ? 1 : Math.abs(value) >= 0.1 ? 2 : 4;
  return value.toLocaleString("en-GB", {minimumFractionDigits: digits, maximumFractionDigits: digits});
}

/// A percentage in a sentence: always one decimal.
function percentText(value) {
  return `${value.toFixed(1)} %`;
}

function withUnit(value, unit) {
  return value === null || value === undefined ? "not known" : `${shown(value)} ${unit}`;
}

function share(part, whole) {
  return whole > 0 ? 100 * part / whole : null;
}

function sizeOf(bases) {
  if (bases >= 1e6) return `${shown(bases / 1e6)} Mb`;
  return bases >= 1e3 ? `${shown(bases / 1e3)} kb` : `${bases} bases`;
}

function plural(count, word) {
  return `${shown(count)} ${word}${count === 1 ? "" : "s"}`;
}

function reverseComplement(unit) {
  const partner = {A: "T", C: "G", G: "C", T: "A"};
  return [...unit].reverse().map((base) => partner[base] ?? base).join("");
}

function copyClassName(classes, index) {
  const first = classes[index];
  const next = classes[index + 1];
  if (next === undefined) return `${first}+`;
  return next - 1 === first ? `${first}` : `${first}-${next - 1}`;
}

function divergenceClassName(count, index) {
  if (index === 0) return "0";
  return index === count - 1 ? `>${index - 1}` : `${index - 1}-${index}`;
}
