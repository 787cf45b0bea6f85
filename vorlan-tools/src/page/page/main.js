// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

const data = JSON.parse(document.getElementById("data").textContent);
const main = document.getElementById("main");
let map = null;

function genomeSections(genome) {
  const sections = [keySection(genome)];
  map = null;
  if (genome.repeats > 0) {
    sections.push(repeatsChart(genome), basesChart(genome), copiesChart(genome), landscapeChart(genome));
    sections.push(unitsChart(genome));
    if (genome.knows_edits) sections.push(editsChart(genome));
    if (genome.calibration?.by_unit_length.length > 0) sections.push(calibrationSection(genome));
    sections.push(unitsSection(genome));
    if (genome.windows.sequences.length > 0) {
      map = mapFigure(genome);
      sections.push(map.section);
    }
  }
  if (genome.sequences > 0) sections.push(sequencesSection(genome));
  if (genome.repeats > 0) {
    sections.push(listSection("longest", "Longest repeats", "With their alignments: sequence, matches, perfect repeat.",
      genome.longest_repeats),
    listSection("most-diverged", "Most diverged repeats", "Of those with 50 bases and more, the least perfect ones.",
      genome.most_diverged_repeats));
  }
  return sections;
}

function draw() {
  map?.draw();
  drawCharts();
}

function showGenome(index) {
  forgetCharts();
  hideTip();
  const compared = data.genomes.length > 1 ? comparisonSections(data.genomes) : [];
  main.replaceChildren(...compared, ...genomeSections(data.genomes[index]));
  draw();
}

function begin() {
  const names = data.genomes.map((genome) => genome.name);
  const title = `Tandem repeats: ${names.join(", ")}`;
  document.title = title.slice(0, 200);
  document.getElementById("title").textContent = title;
  const versions = [...new Set(data.genomes.map((genome) => genome.version))];
  document.getElementById("origin").textContent = `Found by Vorlan ${versions.join(", ")}.`;
  const select = document.getElementById("genome");
  select.append(...names.map((name, i) => make("option", {value: i}, name)));
  select.addEventListener("change", () => showGenome(Number(select.value)));
  document.getElementById("choice").hidden = names.length < 2;
  showGenome(0);
}

darkScheme.addEventListener("change", draw);
addEventListener("beforeprint", () => {
  isPrinting = true;
  prepareForPaper();
  draw();
});
addEventListener("afterprint", () => {
  isPrinting = false;
  leavePaper();
  draw();
});
let waiting = null;
addEventListener("resize", () => {
  clearTimeout(waiting);
  waiting = setTimeout(() => map?.draw(), 150);
});
begin();
