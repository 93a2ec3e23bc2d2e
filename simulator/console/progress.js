// The line under the header that tells what is on its way and how long it usually takes.

import { seconds } from './dom.js';

const AFTER_MS = 400; // what is quicker is not worth a line

export function showProgress(api) {
  const line = document.getElementById('progress');
  const done = document.getElementById('progress-done');
  const text = document.getElementById('progress-text');
  let timer;

  function tick(exchange, begin) {
    const usual = api.usual(exchange.method, exchange.uri);
    const passed = (performance.now() - begin) / 1000;
    const share = passed < usual ? passed / usual * 0.95 : 1 - 0.05 * usual / passed;
    done.style.width = `${(share * 100).toFixed(1)}%`;
    const late = passed > usual * 1.5 + 1 ? '; it takes longer now' : '';
    const others = api.waiting.filter((job) => !job.exchange.byItself).length;
    const words = `${exchange.method} ${exchange.uri.replace('/api/v1', '')} is on its way, usually ${seconds(usual)}${late}`
      + (others > 0 ? `; ${others} more after it` : '');
    if (text.textContent !== words) text.textContent = words;
    line.hidden = passed * 1000 < AFTER_MS;
  }

  api.addEventListener('start', ({ detail }) => {
    const begin = performance.now();
    clearInterval(timer);
    timer = setInterval(() => tick(detail, begin), 200);
  });
  api.addEventListener('end', () => {
    clearInterval(timer);
    line.hidden = true;
  });
}
