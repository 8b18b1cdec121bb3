// Measures the game in a browser: what a frame of its own takes, without the drawing, and what is
// drawn in it; how soon the title stands; what the tab holds.
//
// Usage: figures.mjs SITE

import assert from 'node:assert';
import {readFileSync} from 'node:fs';
import {Browser, serve} from './browser.mjs';
import {watch} from './watch.mjs';

const FRAMES = 60;
const DRAW_CALLS = 1000;  // in a frame of the town, at the most

const server = await serve(process.argv[2]);
const browser = new Browser();
const page = await browser.page();
await page.before(watch);
const visit = async () => {
    await page.open(server.address);
    return page.until('the title', () => window.watched?.frames > 2 && window.watched.first);
};
const median = (numbers) => numbers.sort((a, b) => a - b)[Math.floor(numbers.length / 2)];

const step = (count, drawn) => page.call((...words) => window.watched.step(...words), count, drawn);

// What is drawn is left out: in software it takes many times what the program itself does. Each
// frame is asked for by itself, so that none waits for what the one before left to be done.
async function frame(name) {
    const all = [];
    while (all.length < FRAMES) {
        all.push(...await step(1, false));
    }
    const of = (key) => median(all.map((one) => one[key]));
    console.log(`${name}: ${of('ms').toFixed(1)} ms a frame without the drawing, `
        + `${of('calls')} draw calls, ${of('vertices')} vertices`);
    assert.strictEqual(Math.max(...all.map(({created}) => created)), 0,
        `${name}: no frame makes buffers, textures or programs`);
    return of('calls');
}

async function megabytesOf(type) {
    const {processInfo} = await browser.send('SystemInfo.getProcessInfo');
    const held = processInfo.filter((one) => one.type === type).map(({id}) =>
        Number(/^Pss:\s+(\d+)/m.exec(readFileSync(`/proc/${id}/smaps_rollup`, 'utf8'))[1]));
    return Math.round(Math.max(...held) / 1000);
}

await visit();
const firsts = [];
for (let i = 0; i < 5; ++i) {
    firsts.push(await visit());
}
console.log(`the title ${(median(firsts) / 1000).toFixed(1)} s after navigation, files kept`);
await frame('title');
await page.press('p');
await step(FRAMES, false);
await step(1, true);
const calls = await frame('town');
console.log(`the tab holds ${await megabytesOf('renderer')} MB, and the process that draws for all `
    + `tabs (here in software) ${await megabytesOf('GPU')} MB`);
assert(calls <= DRAW_CALLS, `a town frame takes no more than ${DRAW_CALLS} draw calls`);

await browser.close();
server.close();
