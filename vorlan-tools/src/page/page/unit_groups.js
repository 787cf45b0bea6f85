// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Unit lengths in groups, so that a chart of units up to thousands of bases can still be read.

const barBorders = [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 21, 26, 31, 41, 51, 61, 81, 101, 126, 151, 176, 201, 251, 301,
  401, 501, 751, 1001, 1501, 2001, 3001, 5001, 10001];
const seriesBorders = [1, 2, 3, 4, 5, 6, 7, 11, 21, 51, 101, 201, 501, 1001];

function groupsBetween(lengths, borders) {
  const groups = borders.map((first, i) => ({first, last: (borders[i + 1] ?? Infinity) - 1}));
  return groups.filter((group) => lengths.some((length) => length >= group.first && length <= group.last));
}

function single(length) {
  return {first: length, last: length};
}

function groupName(group) {
  if (group.first === group.last) return `${group.first}`;
  return group.last === Infinity ? `${group.first}+` : `${group.first}-${group.last}`;
}

/// Bars: each length its own while there are at most 30.
function barGroups(entries) {
  const lengths = entries.map((entry) => entry.unit_length);
  return lengths.length <= 30 ? lengths.map(single) : groupsBetween(lengths, barBorders);
}

/// Series of one chart: at most as many as there are colours.
function seriesGroups(entries) {
  const lengths = entries.map((entry) => entry.unit_length);
  if (lengths.length <= seriesColours) return lengths.map(single);
  const groups = groupsBetween(lengths, seriesBorders);
  while (groups.length > seriesColours) {
    const last = groups.pop();
    groups[groups.length - 1] = {first: groups[groups.length - 1].first, last: last.last};
  }
  return groups;
}

function entriesOf(entries, group) {
  return entries.filter((entry) => entry.unit_length >= group.first && entry.unit_length <= group.last);
}

function sumOf(entries, key) {
  return entries.reduce((sum, entry) => sum + (entry[key] ?? 0), 0);
}

/// Repeats (place 1) or bases (place 2) of entries in a class of copies or divergence.
function classSum(entries, key, index, place) {
  let sum = 0;
  for (const entry of entries) for (const found of entry[key]) if (found[0] === index) sum += found[place];
  return sum;
}
