// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Several genomes side by side, in numbers that do not depend on their sizes.

function comparisonTable(genomes) {
  return {
    id: "comparison-table", title: "Genomes side by side",
    columns: [{title: "Genome", value: (row) => row.name, isText: true}, numberColumn("Bases", "bases"),
      numberColumn("Sequences", "sequences"), numberColumn("Repeats", "repeats"), numberColumn("Repeats per Mb", "loci_per_mb"),
      numberColumn("Bases in repeats per Mb", "bases_per_mb"), numberColumn("% in repeats", "covered_percent"),
      numberColumn("% perfect", (row) => share(row.perfect, row.repeats)), numberColumn("Edits per 100 bases", "edits_per_100_bases"),
      numberColumn("Longest", "longest")],
    rows: genomes,
  };
}

function perMillion(count, genome) {
  return genome.bases > 0 ? 1e6 * count / genome.bases : null;
}

function comparisonChart(all, genomes, {id, title, note, label, classes, nameOf, countOf}) {
  const rows = genomes.flatMap((genome) => classes.map((found) => ({
    genome: genome.name, name: nameOf(found), value: perMillion(countOf(genome, found), genome),
  })));
  return chartFigure(all, {
    id, title, note, isHalf: true,
    columns: [{title: "Genome", value: (row) => row.genome, isText: true}, {title: label, value: (row) => row.name, isText: true},
      numberColumn("Bases per Mb", "value")],
    rows,
  }, (colours) => chartConfig(colours, {
    labels: classes.map(nameOf), x: label, y: "Bases in repeats per Mb",
    datasets: genomes.map((genome, i) => barsOf(genome.name.slice(0, 30),
      classes.map((found) => perMillion(countOf(genome, found), genome)), colours.series[i % colours.series.length])),
  }));
}

function comparisonSections(genomes) {
  const all = {name: "genomes"};
  const lengths = data.total.by_unit_length;
  const units = data.total.units.slice(0, 12);
  const unknown = genomes.some((genome) => !genome.bases);
  const table = comparisonTable(genomes);
  const differ = genomes.some((genome) => JSON.stringify(settingsThatMatter(genome)) !== JSON.stringify(settingsThatMatter(genomes[0])));
  const note = differ ? "The searches had different settings: numbers are not comparable without care." : "All searches had the same settings.";
  const sections = [tableSection(all, {...table, note})];
  if (unknown) return sections;
  const unitOf = (genome, unit) => genome.units.find((entry) => entry.unit === unit.unit)?.bases_in_repeats ?? 0;
  return [...sections,
    comparisonChart(all, genomes, {id: "comparison-lengths", title: "Bases per Mb by unit length", label: "Unit length",
      classes: barGroups(lengths), nameOf: groupName,
      countOf: (genome, group) => sumOf(entriesOf(genome.by_unit_length, group), "bases_in_repeats")}),
    comparisonChart(all, genomes, {id: "comparison-units", title: "Bases per Mb by unit", label: "Unit",
      note: "The twelve units with most repeats in all genomes together; 0 where a unit is not among the listed ones of a genome.",
      classes: units, nameOf: (unit) => unit.unit.slice(0, 20), countOf: unitOf})];
}

/// All but what differs between parts of one job, and how the report looks.
function settingsThatMatter(genome) {
  const looks = ["Sequence range to process", "Output format", "Print sequence mode", "Print seq. info as comment",
    "Number of flanking nucletides", "Write file with masked seq."];
  return [genome.version, ...genome.settings.filter(([label]) => !looks.includes(label))];
}
