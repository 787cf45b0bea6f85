// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// A drawing context that writes SVG: what Chart.js draws on it can be saved and edited without loss.

function escapeXml(text) {
  const names = {"&": "&amp;", "<": "&lt;", ">": "&gt;", "\"": "&quot;"};
  return String(text).replace(/[&<>"]/g, (c) => names[c]).replace(/[^\t\n\r\u0020-\uD7FF\uE000-\uFFFD]/g, "\uFFFD");
}

class SvgRecorder {
  constructor(canvas, width, height) {
    this.canvas = canvas;
    this.size = [width, height];
    this.measure = document.createElement("canvas").getContext("2d");
    this.parts = [];
    this.clips = 0;
    this.stack = [];
    this.path = "";
    Object.assign(this, {
      fillStyle: "#000", strokeStyle: "#000", lineWidth: 1, lineCap: "butt", lineJoin: "miter", font: "10px sans-serif",
      textAlign: "start", textBaseline: "alphabetic", globalAlpha: 1, lineDashOffset: 0, matrix: [1, 0, 0, 1, 0, 0],
      dash: [], clipId: null,
    });
  }

  static get kept() {
    return ["fillStyle", "strokeStyle", "lineWidth", "lineCap", "lineJoin", "font", "textAlign", "textBaseline",
      "globalAlpha", "lineDashOffset", "matrix", "dash", "clipId"];
  }

  save() { this.stack.push(Object.fromEntries(SvgRecorder.kept.map((key) => [key, this[key]]))); }
  restore() { Object.assign(this, this.stack.pop() ?? {}); }
  resetTransform() { this.matrix = [1, 0, 0, 1, 0, 0]; }
  setTransform(...matrix) { this.matrix = matrix; }
  transform(a, b, c, d, e, f) {
    const [A, B, C, D, E, F] = this.matrix;
    this.matrix = [A * a + C * b, B * a + D * b, A * c + C * d, B * c + D * d, A * e + C * f + E, B * e + D * f + F];
  }
  translate(x, y) { this.transform(1, 0, 0, 1, x, y); }
  scale(x, y) { this.transform(x, 0, 0, y, 0, 0); }
  rotate(angle) {
    this.transform(Math.cos(angle), Math.sin(angle), -Math.sin(angle), Math.cos(angle), 0, 0);
  }
  setLineDash(dash) { this.dash = [...dash]; }
  getLineDash() { return [...this.dash]; }
  measureText(text) {
    this.measure.font = this.font;
    return this.measure.measureText(text);
  }

  beginPath() { this.path = ""; }
  closePath() { this.path += "Z"; }
  moveTo(x, y) { this.path += `M${x} ${y}`; }
  lineTo(x, y) { this.path += `${this.path ? "L" : "M"}${x} ${y}`; }
  bezierCurveTo(...points) { this.path += `C${points.join(" ")}`; }
  quadraticCurveTo(...points) { this.path += `Q${points.join(" ")}`; }
  rect(x, y, width, height) { this.path += `M${x} ${y}h${width}v${height}h${-width}Z`; }
  arc(x, y, radius, begin, end, backwards = false) { this.ellipse(x, y, radius, radius, 0, begin, end, backwards); }
  ellipse(x, y, rx, ry, turn, begin, end, backwards = false) {
    const at = (angle) => `${x + rx * Math.cos(angle)} ${y + ry * Math.sin(angle)}`;
    const middle = (begin + end) / 2;
    const sweep = backwards ? 0 : 1;
    this.path += `${this.path ? "L" : "M"}${at(begin)}A${rx} ${ry} 0 0 ${sweep} ${at(middle)}A${rx} ${ry} 0 0 ${sweep} ${at(end)}`;
  }

  clip() {
    const id = `clip${++this.clips}`;
    this.parts.push(`<clipPath id="${id}"><path d="${this.path}" transform="matrix(${this.matrix.join(" ")})"/></clipPath>`);
    this.clipId = id;
  }

  put(tag, attributes, content = "") {
    const shared = {transform: `matrix(${this.matrix.join(" ")})`, opacity: this.globalAlpha === 1 ? null : this.globalAlpha};
    const all = Object.entries({...attributes, ...shared}).filter(([, value]) => value !== null);
    const drawn = `<${tag} ${all.map(([key, value]) => `${key}="${escapeXml(value)}"`).join(" ")}>${content}</${tag}>`;
    this.parts.push(this.clipId ? `<g clip-path="url(#${this.clipId})">${drawn}</g>` : drawn);
  }

  get strokeAttributes() {
    return {
      stroke: this.strokeStyle, "stroke-width": this.lineWidth, "stroke-linecap": this.lineCap, "stroke-linejoin": this.lineJoin,
      "stroke-dasharray": this.dash.length ? this.dash.join(" ") : null,
    };
  }

  fill() { this.put("path", {d: this.path, fill: this.fillStyle}); }
  stroke() { this.put("path", {d: this.path, fill: "none", ...this.strokeAttributes}); }
  fillRect(x, y, width, height) { this.put("rect", {x, y, width, height, fill: this.fillStyle}); }
  strokeRect(x, y, width, height) { this.put("rect", {x, y, width, height, fill: "none", ...this.strokeAttributes}); }
  clearRect() {}
  fillText(text, x, y) {
    const anchors = {center: "middle", right: "end", end: "end"};
    const baselines = {middle: "central", top: "hanging", hanging: "hanging", bottom: "auto"};
    this.put("text", {
      x, y, fill: this.fillStyle, style: `font: ${this.font}`, "text-anchor": anchors[this.textAlign] ?? "start",
      "dominant-baseline": baselines[this.textBaseline] ?? "auto",
    }, escapeXml(text));
  }
  strokeText() {}

  text() {
    const [width, height] = this.size;
    return `<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}" viewBox="0 0 ${width} ${height}">`
      + `<rect width="${width}" height="${height}" fill="#ffffff"/>${this.parts.join("\n")}</svg>\n`;
  }
}
