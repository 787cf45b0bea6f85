# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""How the pictures look, and how they are written: the same bytes for the same data.

The colours are those of Okabe and Ito, which people with any kind of colour vision can tell apart.
"""

from __future__ import annotations

from pathlib import Path

import matplotlib

matplotlib.use("svg")
from matplotlib.figure import Figure

BLUE, VERMILION, GREEN, GREY = "#0072B2", "#D55E00", "#009E73", "#555555"
PALE = {BLUE: "#BFDCEC", VERMILION: "#F5D6BF", GREEN: "#BFE7DC"}

matplotlib.rcParams.update({
    "svg.hashsalt": "vorlan",
    "font.family": "DejaVu Sans",
    "font.size": 9,
    "axes.spines.top": False,
    "axes.spines.right": False,
    "axes.edgecolor": GREY,
    "axes.labelcolor": GREY,
    "xtick.color": GREY,
    "ytick.color": GREY,
    "axes.titlesize": 10,
    "axes.titlelocation": "left",
    "axes.titlepad": 10,
})


def write(figure: Figure, path: Path, source: str | None = None) -> None:
    """Writes the picture without a date, on white, so that it can be read on dark pages too; notes its source in it."""
    figure.savefig(path, format="svg", facecolor="white", metadata={"Date": None, "Source": source})
