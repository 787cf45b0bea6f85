// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Charts over unit lengths: repeats, bases, edits, copies, and the landscape of divergence.

function perfectnessChart(genome, {id, title, all, perfect, axisTitle}) {
  const entries = genome.by_unit_length;
  const groups = barGroups(entries);
  const sums = (key) => groups.map((group) => sumOf(entriesOf(entries, group), key));
  const totals = sums(all);
  const perfects = sums(perfect);
  return chartFigure(genome, {
    id, title, isHalf: true,
    note: "Perfect repeats have no mismatch, insertion or deletion.",
    columns: [{title: "Unit length", value: (row) => row.unit_length}, numberColumn("All", all),
      numberColumn("Perfect", perfect), numberColumn("Imperfect", (row) => row[all] - row[perfect]),
      numberColumn("Perfect, %", (row) => share(row[perfect], row[all]))],
    rows: entries,
  }, (colours) => chartConfig(colours, {
    labels: groups.map(groupName), x: "Unit length", y: axisTitle, stacked: true,
    datasets: [barsOf("Perfect", perfects, colours.perfect),
      barsOf("Imperfect", totals.map((total, i) => total - perfects[i]), colours.imperfect)],
  }));
}

function repeatsChart(genome) {
  return perfectnessChart(genome, {id: "repeats-by-unit-length", title: "Repeats by unit length", all: "repeats",
    perfect: "perfect", axisTitle: "Repeats"});
}

function basesChart(genome) {
  return perfectnessChart(genome, {id: "bases-by-unit-length", title: "Bases in repeats by unit length",
    all: "bases_in_repeats", perfect: "bases_in_perfect", axisTitle: "Bases"});
}

const editKinds = [["Mismatches", "mismatches"], ["Insertions", "insertions"], ["Deletions", "deletions"]];

function editsChart(genome) {
  const entries = genome.by_unit_length;
  const groups = barGroups(entries);
  const rates = (key) => groups.map((group) => {
    const found = entriesOf(entries, group);
    return share(sumOf(found, key), sumOf(found, "bases_in_repeats"));
  });
  return chartFigure(genome, {
    id: "edits", title: "Edits per 100 bases by unit length", isHalf: true,
    note: "Insertions are bases that only the sequence has, deletions those that only the unit has.",
    columns: [{title: "Unit length", value: (row) => row.unit_length}, numberColumn("Bases", "bases_in_repeats"),
      ...editKinds.map(([title, key]) => numberColumn(title, key)), numberColumn("Edits per 100 bases", "edits_per_100_bases")],
    rows: entries,
  }, (colours) => chartConfig(colours, {
    labels: groups.map(groupName), x: "Unit length", y: "Edits per 100 bases", stacked: true,
    datasets: editKinds.map(([title, key], i) => barsOf(title, rates(key), [colours.series[3], colours.series[1], colours.series[2]][i])),
  }));
}

/// Classes from the first to the last that hold something in one of the entries.
function usedClasses(entries, key, first) {
  const used = entries.flatMap((entry) => entry[key].map(([index]) => index)).filter((index) => index >= first);
  if (used.length === 0) return [];
  const begin = key === "by_divergence" ? first : Math.min(...used);
  return Array.from({length: Math.max(...used) - begin + 1}, (_, i) => begin + i);
}

function classRows(entries, key, classes, nameOf) {
  return entries.flatMap((entry) => entry[key].filter(([index]) => classes.includes(index))
    .map(([index, repeats, bases]) => ({unit_length: entry.unit_length, index, name: nameOf(index), repeats, bases})));
}

function classColumns(title) {
  return [{title: "Unit length", value: (row) => row.unit_length},
    {title, value: (row) => row.index, show: (_, row) => row.name},
    numberColumn("Repeats", "repeats"), numberColumn("Bases", "bases")];
}

function copiesChart(genome) {
  const entries = genome.by_unit_length;
  const classes = usedClasses(entries, "by_copies", 0);
  const nameOf = (index) => copyClassName(data.copy_classes, index);
  const groups = seriesGroups(entries);
  return chartFigure(genome, {
    id: "copies", title: "Copies by unit length", isHalf: true,
    note: "Where a line begins, the thresholds of the search begin to let repeats through. Classes of copies become wider to the right.",
    columns: classColumns("Copies"), rows: classRows(entries, "by_copies", classes, nameOf),
  }, (colours) => chartConfig(colours, {
    type: "line", labels: classes.map(nameOf), x: "Copies of the unit", y: "Repeats", logarithmic: true,
    datasets: groups.map((group, i) => {
      const found = entriesOf(entries, group);
      const colour = colours.series[i % colours.series.length];
      return {
        label: `Unit ${groupName(group)}`, borderColor: colour, backgroundColor: colour, borderWidth: 2, spanGaps: false,
        pointRadius: 3, pointStyle: ["circle", "rect", "triangle", "rectRot", "star", "cross", "crossRot", "dash"][i % 8],
        data: classes.map((index) => classSum(found, "by_copies", index, 1) || null),
      };
    }),
  }));
}

function landscapeChart(genome) {
  const entries = genome.by_unit_length;
  const classes = usedClasses(entries, "by_divergence", 1);
  const nameOf = (index) => divergenceClassName(data.divergence_classes, index);
  const groups = seriesGroups(entries);
  const undiverged = classSum(entries, "by_divergence", 0, 2);
  const all = sumOf(entries, "bases_in_repeats");
  return chartFigure(genome, {
    id: "landscape", title: "Landscape of divergence", isHalf: true,
    note: `Divergence is 100 % less the perfection. Repeats without any are left out: ${shown(undiverged)} of ${shown(all)} bases.`,
    columns: classColumns("Divergence, %"),
    rows: classRows(entries, "by_divergence", [0, ...classes], nameOf),
  }, (colours) => chartConfig(colours, {
    labels: classes.map(nameOf), x: "Divergence, %", y: "Bases", stacked: true,
    datasets: groups.map((group, i) => barsOf(`Unit ${groupName(group)}`,
      classes.map((index) => classSum(entriesOf(entries, group), "by_divergence", index, 2)),
      colours.series[i % colours.series.length])),
  }));
}

function unitsChart(genome) {
  const units = genome.units.slice(0, 15);
  const others = units.map((unit) => unit.bases_in_repeats - unit.bases_in_perfect);
  return chartFigure(genome, {
    id: "bases-by-unit", title: "Bases in repeats of the commonest units", isHalf: true,
    note: "The fifteen units with most repeats. A unit stands for all its rotations on both strands.",
    columns: [{title: "Unit", value: (row) => row.unit, isText: true}, numberColumn("All", "bases_in_repeats"),
      numberColumn("Perfect", "bases_in_perfect"), numberColumn("Imperfect", (row) => row.bases_in_repeats - row.bases_in_perfect)],
    rows: units,
  }, (colours) => chartConfig(colours, {
    labels: units.map(({unit}) => (unit.length > 14 ? `${unit.slice(0, 13)}\u2026` : unit)), x: "Unit", y: "Bases", stacked: true,
    datasets: [barsOf("Perfect", units.map((unit) => unit.bases_in_perfect), colours.perfect),
      barsOf("Imperfect", others, colours.imperfect)],
  }));
}
