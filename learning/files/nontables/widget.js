'use strict';

const DEFAULTS = { width: 320, height: 200, color: '#334455' };

export function widget(root, options = {}) {
  const { width, height, color } = { ...DEFAULTS, ...options };
  const el = document.createElement('div');
  el.style.cssText = `width:${width}px;height:${height}px;background:${color}`;
  root.append(el);

  let start = null;
  el.addEventListener('pointerdown', (e) => { start = [e.clientX, e.clientY]; });
  el.addEventListener('pointermove', (e) => {
    if (!start) return;
    const [x, y] = start;
    el.style.transform = `translate(${e.clientX - x}px, ${e.clientY - y}px)`;
  });
  el.addEventListener('pointerup', () => { start = null; });
  return { el, destroy: () => el.remove() };
}
