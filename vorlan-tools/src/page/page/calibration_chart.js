// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// How far repeats can be trusted: the share of false ones by least score, from shuffled copies.

/// The share among repeats of these unit lengths with that score or more, in per cent; null if none was found.
function falseShare(entries, score, copies) {
  let found = 0;
  let chance = 0;
  for (const entry of entries) {
    for (const row of entry.scores) {
      if (row[0] < score) continue;
      found += row[1];
      chance += row[2];
    }
  }
  return found > 0 ? Math.min(100, 100 * chance / copies / found) : null;
}

function calibrationRows(calibration) {
  return calibration.by_unit_length.flatMap((entry) => entry.scores.map(([score, found, chance, share, from]) => ({
    unit_length: entry.unit_length, score, found, expected: chance / calibration.copies, share: 100 * share, from: 100 * from,
  })));
}

function thresholdText(entry, level) {
  const threshold = entry.thresholds.find((found) => found.level === level);
  return `${threshold.score}${threshold.is_sure ? "" : " ?"}`;
}

function calibrationTable(calibration) {
  const columns = [{title: "Unit length", value: (row) => row.unit_length}, numberColumn("Found", "found"),
    numberColumn("By chance per Mb", "chance_per_mb"),
    {title: "False, %", value: (row) => 100 * row.false_share},
    ...[0.05, 0.01].map((level) => ({title: `Least score for ${100 * level} %`, isText: true,
      value: (row) => thresholdText(row, level)}))];
  return sortableTable(columns, calibration.by_unit_length, {caption: "False repeats at the thresholds of the search. "
    + "With a question mark: too few repeats to tell; chance brought none with that score."});
}

function calibrationText(calibration) {
  const place = calibration.window > 0 ? `windows of ${sizeOf(calibration.window)}` : "whole sequences";
  return `What chance brings was seen in ${plural(calibration.copies, "copy").replace("copys", "copies")} of the genome, shuffled in `
    + `${place} so that words of ${plural(calibration.k, "base")} stay. Among repeats with at least that score, this share is false.`;
}

function calibrationSection(genome) {
  const {calibration} = genome;
  const rows = calibrationRows(calibration);
  const scores = [...new Set(rows.map((row) => row.score))].sort((a, b) => a - b);
  const last = Math.max(...rows.filter((row) => row.expected > 0).map((row) => row.score), scores[0]);
  const shownScores = scores.filter((score) => score <= last + 1);
  const groups = seriesGroups(calibration.by_unit_length);
  const section = chartFigure(genome, {
    id: "calibration", title: "Repeats that chance explains", note: calibrationText(calibration),
    columns: [numberColumn("Unit length", "unit_length"), numberColumn("Score", "score"), numberColumn("Found", "found"),
      numberColumn("Expected by chance", "expected"), numberColumn("False of this score, %", "share"),
      numberColumn("False from this score on, %", "from")],
    rows,
  }, (colours) => chartConfig(colours, {
    type: "line", labels: shownScores.map(String), x: "Least score", y: "False repeats, %", unit: " %",
    datasets: groups.map((group, i) => ({
      label: `Unit ${groupName(group)}`, borderColor: colours.series[i], backgroundColor: colours.series[i], borderWidth: 2,
      pointRadius: 3, data: shownScores.map((score) => falseShare(entriesOf(calibration.by_unit_length, group), score, calibration.copies)),
    })),
  }));
  const advice = calibration.advice.map((line) => make("li", {}, `At most ${100 * line.level} % false: `, make("code", {}, line.options),
    ` keeps ${plural(line.kept, "repeat")}, of which ${shown(line.expected_false)} are expected by chance.`));
  section.append(make("ul", {}, ...advice), calibrationTable(calibration));
  return section;
}
