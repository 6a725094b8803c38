// What is asked of a page, as functions that run in it.
'use strict';

// What reaches beyond the window, or in a picture beyond its edge; a listing may, where it scrolls by itself.
function tooWide(width) {
  if (innerWidth !== width) return [`the window is ${innerWidth} wide, not ${width}`];
  const all = document.documentElement;
  const edge = document.body ? innerWidth : all.getBoundingClientRect().right;
  const wide = [...all.querySelectorAll('*')].filter((element) =>
    element.getBoundingClientRect().right > edge + 0.5 && !element.parentNode.closest('pre'));
  if (all.scrollWidth > innerWidth) wide.push(all);
  return wide.map((element) => `too wide: ${element.tagName} "${element.textContent.trim().slice(0, 30)}"`);
}

// Texts whose contrast to what is behind them is below 4.5 to 1.
function hardToRead() {
  const numbers = (color) => color.match(/[\d.]+/g).map(Number);
  const clear = (color) => color === 'none' || numbers(color)[3] === 0;
  const light = (color) => {
    const [r, g, b] = numbers(color).map((c) => (c / 255 <= 0.04045 ? c / 255 / 12.92 : ((c / 255 + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  // In a picture the shape that is drawn there, on a page the nearest background.
  const behind = (element) => {
    const drawn = element.ownerSVGElement;
    const { x, y, width, height } = element.getBoundingClientRect();
    const candidates = drawn ? document.elementsFromPoint(x + width / 2, y + height / 2).filter((e) => e.tagName === 'rect') : [];
    for (let e = element; !drawn && e; e = e.parentElement) candidates.push(e);
    const colors = candidates.map((e) => getComputedStyle(e)[drawn ? 'fill' : 'backgroundColor']);
    return colors.find((color) => !clear(color)) || 'rgb(255, 255, 255)';
  };
  const found = new Set();
  const texts = document.createTreeWalker(document.documentElement, NodeFilter.SHOW_TEXT);
  while (texts.nextNode()) {
    const element = texts.currentNode.parentElement;
    if (!texts.currentNode.data.trim() || !element.getClientRects().length) continue;
    const style = getComputedStyle(element);
    const pair = [element.ownerSVGElement ? style.fill : style.color, behind(element)];
    const [low, high] = pair.map(light).sort((a, b) => a - b);
    const contrast = (high + 0.05) / (low + 0.05);
    if (contrast < 4.5) found.add(`contrast ${contrast.toFixed(2)}: ${pair.join(' on ')}, "${texts.currentNode.data.trim().slice(0, 30)}"`);
  }
  return [...found];
}

// Pieces of listings in the host's language that are coloured as what they are not.
function wronglyColoured() {
  const right = {
    st: (text) => /^"([^"]|"")*"$/.test(text),
    co: (text) => /^('|\/\/|rem\b)/i.test(text),
    dv: (text) => /^(\d|&[hbouc])/i.test(text),
  };
  const word = (text, before) => /^#?[a-z]/i.test(text) && !before.endsWith('.');
  const found = [];
  for (const line of document.querySelectorAll('code.vb > span')) {
    let before = '';
    for (const piece of line.childNodes) {
      const text = piece.textContent;
      const plain = !piece.className && !/["']|\/\//.test(text);
      if (!(plain || (piece.className && (right[piece.className] || word)(text, before)))) found.push(`coloured wrongly: ${text}`);
      before = text;
    }
  }
  return found;
}

function contents() {
  return {
    missing: [...document.images].filter((image) => !image.naturalWidth).map((image) => image.src),
    words: document.body.innerText.length,
    navigation: [...document.querySelectorAll('#pages a')].filter((link) => link.getClientRects().length).length,
    foot: document.getElementById('foot').innerText.trim(),
  };
}
