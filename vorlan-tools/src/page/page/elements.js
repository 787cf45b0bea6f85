// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: the Vorlan authors

// Names are any text: nothing here, or anywhere on the page, reads a name as HTML.

function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name === "class") element.className = value;
    else if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (value !== false && value !== null) element.setAttribute(name, value === true ? "" : value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

function makeSvg(tag, attributes = {}, ...children) {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

function save(name, type, content) {
  const address = URL.createObjectURL(new Blob([content], {type}));
  const link = make("a", {href: address, download: name});
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(address), 10000);
}

function fileName(genome, id, ending) {
  const plain = genome.name.replace(/[^A-Za-z0-9._-]+/g, "_").slice(0, 60) || "genome";
  return `${plain}-${id}.${ending}`;
}

const tip = document.getElementById("tip");

function showTip(text, x, y) {
  tip.textContent = text;
  tip.hidden = false;
  const box = tip.getBoundingClientRect();
  tip.style.left = `${Math.max(4, Math.min(x + 12, innerWidth - box.width - 4))}px`;
  tip.style.top = `${y + 16 + box.height > innerHeight ? y - box.height - 8 : y + 16}px`;
}

function hideTip() {
  tip.hidden = true;
}
