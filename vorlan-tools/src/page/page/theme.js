// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Colours that readers with any colour vision can tell apart: Okabe and Ito for series, cividis for
// densities. Files that are saved use the light ones.

const seriesColours = 8;
const darkScheme = matchMedia("(prefers-color-scheme: dark)");

const lightTheme = {
  text: "#1b1f24", soft: "#57606a", line: "#d0d7de", ground: "#ffffff",
  perfect: "#0072b2", imperfect: "#e69f00",
  series: ["#56b4e9", "#e69f00", "#009e73", "#0072b2", "#d55e00", "#cc79a7", "#f0e442", "#3c3c3c"],
  density: ["#fee838", "#d9c55c", "#a59c74", "#7c7b78", "#4c556c", "#00224e"], none: "#f2f4f7",
};
const darkTheme = {
  text: "#e6e8eb", soft: "#a5adb6", line: "#3a424b", ground: "#14171b",
  perfect: "#56b4e9", imperfect: "#e69f00",
  series: ["#56b4e9", "#e69f00", "#009e73", "#3c8fd0", "#d55e00", "#cc79a7", "#f0e442", "#b8b8b8"],
  density: ["#1d3f7a", "#4c556c", "#7c7b78", "#a59c74", "#d9c55c", "#fee838"], none: "#23282e",
};

let isPrinting = false;

function theme() {
  return darkScheme.matches && !isPrinting ? darkTheme : lightTheme;
}
