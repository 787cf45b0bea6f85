// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Colours that readers with any colour vision can tell apart. Series: the hues of Okabe and Ito, moved
// until any two of them are far apart in lightness or hue for readers without red, green or blue cones,
// too. Densities: one hue from near to far from the ground. Files that are saved use the light ones.

const seriesColours = 8;
const darkScheme = matchMedia("(prefers-color-scheme: dark)");

const lightTheme = {
  text: "#1b1f24", soft: "#57606a", line: "#d0d7de", ground: "#ffffff",
  perfect: "#0072b2", imperfect: "#e69f00",
  series: ["#31d7ff", "#fbbc1c", "#02a265", "#0a4090", "#a52c00", "#9b5889", "#bec161", "#2c1c0d"],
  density: ["#d6e6f4", "#abd0e6", "#6aaed6", "#3787c0", "#105ba4", "#08306b"], none: "#ffffff",
};
const darkTheme = {
  text: "#e6e8eb", soft: "#a5adb6", line: "#3a424b", ground: "#14171b",
  perfect: "#56b4e9", imperfect: "#e69f00",
  series: ["#23f0ff", "#e9a53c", "#15a676", "#7853f1", "#a4480f", "#9759aa", "#ffe507", "#b4efc9"],
  density: ["#173a63", "#205a96", "#2f7fc4", "#5ba6e0", "#97cbf0", "#e3f2ff"], none: "#14171b",
};

let isPrinting = false;

function theme() {
  return darkScheme.matches && !isPrinting ? darkTheme : lightTheme;
}
