// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Key figures, a few sentences, the settings, and the tables.

function keyFigures(genome) {
  const figures = [
    ["Bases searched", shown(genome.bases)], ["N among them", shown(genome.ns)], ["Sequences", shown(genome.sequences)],
    ["Repeats", shown(genome.repeats)], ["Perfect repeats", withUnit(share(genome.perfect, genome.repeats), "%")],
    ["Bases in repeats, overlaps once", shown(genome.covered)], ["Share of bases in repeats", withUnit(genome.covered_percent, "%")],
    ["Repeats per Mb", shown(genome.loci_per_mb)], ["Bases in repeats per Mb", shown(genome.bases_per_mb)],
    ["Edits per 100 bases", shown(genome.edits_per_100_bases)], ["Longest repeat", withUnit(genome.longest, "bases")],
    ["Vorlan", genome.version],
  ];
  return make("dl", {class: "figures"}, ...figures.map(([term, value]) => make("div", {}, make("dt", {}, term), make("dd", {}, value))));
}

/// What stands out, in words.
function sentences(genome) {
  if (genome.repeats === 0) return ["No repeats were found with these settings."];
  const most = [...genome.by_unit_length].sort((a, b) => b.bases_in_repeats - a.bases_in_repeats)[0];
  const lines = [`Most bases in repeats are in those of unit length ${most.unit_length}: `
    + `${shown(share(most.bases_in_repeats, genome.bases_in_repeats))} %, in ${plural(most.repeats, "repeat")}.`];
  const unit = genome.units[0];
  if (unit && unit.repeats > 1) {
    lines.push(`The commonest unit is ${shortened(unit.unit, 40)} (${shortened(reverseComplement(unit.unit), 40)} on the other strand), in `
      + `${shown(share(unit.repeats, genome.repeats))} % of the repeats, with ${shown(unit.copies / unit.repeats)} copies on average.`);
  }
  const longest = genome.longest_repeats[0];
  if (longest) lines.push(`The longest is ${repeatText(longest, longest.sequence)}.`);
  return lines;
}

function settingsElement(genome) {
  const rows = genome.settings.map(([label, value]) => make("tr", {}, make("th", {scope: "row", class: "text"}, label),
    make("td", {class: "text"}, value)));
  return printUnfolded(make("details", {}, make("summary", {}, "Settings of the search"),
    make("div", {class: "wide"}, make("table", {}, make("tbody", {}, ...rows)))));
}

function keySection(genome) {
  const without = genome.loci_per_mb_without_n === undefined
    ? make("p", {class: "soft"}, "How many N there are is known if the page is made with --genome.")
    : make("p", {class: "soft"}, `Without N: ${shown(genome.loci_per_mb_without_n)} repeats and ${shown(genome.bases_per_mb_without_n)} bases per Mb.`);
  return make("section", {id: "key-figures"}, ...heading(genome.name, null), keyFigures(genome), without,
    ...sentences(genome).map((text) => make("p", {}, text)), settingsElement(genome));
}

function tableSection(genome, {id, title, note, columns, rows, filter}) {
  return make("section", {id}, ...heading(title, note), sortableTable(columns, rows, {label: title, filter}),
    make("div", {class: "tools"}, saveButton("CSV", () => save(fileName(genome, id, "csv"), "text/csv", csvOf(columns, rows)))));
}

const unitColumn = {title: "Unit", value: (row) => row.unit, isText: true};

function unitsSection(genome) {
  const listed = genome.units.length < genome.different_units ? `the ${shown(genome.units.length)} commonest` : "all";
  return tableSection(genome, {
    id: "units", title: "Commonest units",
    note: `${shown(genome.different_units)} different units, ${listed} listed. A unit stands for all its rotations on both strands.`,
    columns: [unitColumn, {title: "Other strand", value: (row) => reverseComplement(row.unit), isText: true},
      {title: "Length", value: (row) => row.unit.length}, numberColumn("Repeats", "repeats"), numberColumn("Perfect", "perfect"),
      numberColumn("Bases", "bases_in_repeats"), numberColumn("Mean copies", (row) => row.copies / row.repeats),
      numberColumn("Longest", "longest"), numberColumn("Edits per 100 bases", "edits_per_100_bases")],
    rows: genome.units, filter: unitColumn,
  });
}

function sequencesSection(genome) {
  const others = genome.other_sequences.sequences;
  const name = {title: "Sequence", value: (row) => row.name, isText: true};
  return tableSection(genome, {
    id: "sequences", title: "Sequences",
    note: others > 0 ? `The ${genome.by_sequence.length} longest; beside them ${othersText(genome.other_sequences)}.` : null,
    columns: [name, numberColumn("Bases", "bases"), numberColumn("N", "ns"), numberColumn("Repeats", "repeats"),
      numberColumn("Bases in repeats", "covered"), numberColumn("%", "covered_percent"), numberColumn("Repeats per Mb", "loci_per_mb"),
      numberColumn("Longest", "longest"), numberColumn("Edits per 100 bases", "edits_per_100_bases")],
    rows: genome.by_sequence, filter: name,
  });
}

function listSection(id, title, note, repeats) {
  return make("section", {id, class: "half"}, ...heading(title, note), repeatList(repeats));
}
