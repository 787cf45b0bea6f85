// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Colours that readers with any colour vision can tell apart: Okabe and Ito for series, one hue from
// near to far from the ground for densities. Files that are saved use the light ones.

const seriesColours = 8;
const darkScheme = matchMedia("(prefers-color-scheme: dark)");

const lightTheme = {
  text: "#1b1f24", soft: "#57606a", line: "#d0d7de", ground: "#ffffff",
  perfect: "#0072b2", imperfect: "#e69f00",
  series: ["#56b4e9", "#e69f00", "#009e73", "#0072b2", "#d55e00", "#cc79a7", "#f0e442", "#3c3c3c"],
  density: ["#d6e6f4", "#abd0e6", "#6aaed6", "#3787c0", "#105ba4", "#08306b"], none: "#ffffff",
};
const darkTheme = {
  text: "#e6e8eb", soft: "#a5adb6", line: "#3a424b", ground: "#14171b",
  perfect: "#56b4e9", imperfect: "#e69f00",
  series: ["#56b4e9", "#e69f00", "#009e73", "#3c8fd0", "#d55e00", "#cc79a7", "#f0e442", "#b8b8b8"],
  density: ["#173a63", "#205a96", "#2f7fc4", "#5ba6e0", "#97cbf0", "#e3f2ff"], none: "#14171b",
};

let isPrinting = false;

function theme() {
  return darkScheme.matches && !isPrinting ? darkTheme : lightTheme;
}
