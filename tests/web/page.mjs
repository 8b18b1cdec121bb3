// What the page says and does, in a browser: a usual visit, and each thing that may go wrong.
//
// Usage: page.mjs SITE PICTURE_FOLDER

import assert from 'node:assert';
import {mkdirSync} from 'node:fs';
import {basename, dirname, join, resolve} from 'node:path';
import {test} from 'node:test';
import {Browser, serve} from './browser.mjs';
import {watch} from './watch.mjs';

const [site, pictures] = process.argv.slice(2).map((path) => resolve(path));
mkdirSync(pictures, {recursive: true});

// From a folder of the server's, not from its root.
const server = await serve(dirname(site));
const address = `${server.address}${basename(site)}/`;
const browser = new Browser();

async function opened(options = {}) {
    const page = await browser.page(options.width ?? 1280, options.height ?? 1024, options);
    await page.before(watch);
    await options.before?.(page);
    await page.open(options.address ?? address);
    return page;
}

const running = (page) => page.until('the first frame', () => window.watched?.frames > 0);

// Waits until the page says this, a regular expression, to the player, and takes a picture of it.
async function says(page, text, picture) {
    await page.until(`"${text}"`, (wanted) => document.body.innerText.match(wanted), text);
    await page.picture(join(pictures, `${picture}.png`));
}

const press = (page) => page.call(() => document.getElementById('again').click());

const dataOf = (requests) => requests.filter((path) => path.includes('/data/'));

async function round(name, what) {
    await test(name, async () => {
        server.requests.length = 0;
        server.fault = () => undefined;
        await what();
        for (const page of browser.pages.values()) {
            await page.close();
        }
    });
}

await round('a visit, and a second one that loads nothing', async () => {
    const page = await opened({before: (its) => its.send('Network.emulateNetworkConditions',
        {offline: false, latency: 0, downloadThroughput: 5e6, uploadThroughput: 5e6})});
    await says(page, '\\d of 2\\d\\.\\d MB', 'loading');
    await running(page);
    assert.strictEqual(dataOf(server.requests).length, 30);
    assert.strictEqual(await page.call(() => document.title), 'Talvery');
    assert.deepStrictEqual(page.console.filter((line) => /exception|error/i.test(line)), []);
    server.requests.length = 0;
    await page.open(address);
    await running(page);
    assert.deepStrictEqual(dataOf(server.requests), []);
});

await round('the keys that are the game\'s, and those that stay with the browser', async () => {
    const page = await opened();
    await running(page);
    const taken = await page.call(() => {
        const keys = [[' '], ['/'], ['\''], ['w'], ['Enter'], ['F5'], ['Tab'], ['r', true]];
        return keys.filter(([key, ctrlKey]) => !document.activeElement.dispatchEvent(
            new KeyboardEvent('keydown', {key, ctrlKey, bubbles: true, cancelable: true})))
            .map(([key]) => key);
    });
    assert.deepStrictEqual(taken, [' ', '/', '\'', 'w', 'Enter']);
    const menu = await page.call(() => document.getElementById('canvas').dispatchEvent(
        new MouseEvent('contextmenu', {bubbles: true, cancelable: true})));
    assert.strictEqual(menu, false);
});

await round('a change of size, and a dense display', async () => {
    const page = await opened();
    await running(page);
    const shows = (width, height) => page.until(`${width}x${height}`, (w, h) => {
        const gl = document.getElementById('canvas').getContext('webgl2');
        const [, , right, top] = gl.getParameter(gl.VIEWPORT);
        return gl.drawingBufferWidth === w && gl.drawingBufferHeight === h && right === w
            && top === h;
    }, width, height);
    await shows(1280, 1024);
    await page.resize(700, 900);
    await shows(700, 900);
    await page.picture(join(pictures, 'narrow.png'));
    await page.resize(640, 400, {ratio: 2});
    await shows(1280, 800);
    await page.picture(join(pictures, 'dense.png'));
});

await round('a display that is faster than the game', async () => {
    const page = await opened();
    await running(page);
    const second = await page.call(() => window.watched.step(144, false, 1000 / 144));
    const drawn = second.filter(({calls}) => calls > 0).length;
    assert(drawn > 55 && drawn <= 61, `${drawn} frames in a second`);
});

await round('Escape on the title, and another round', async () => {
    const page = await opened();
    await running(page);
    await page.press('Escape');
    await says(page, 'The game has ended. Another round?', 'ended');
    await page.press('Enter');
    await running(page);
});

await round('the two buttons, which leave the keys to the game', async () => {
    const page = await opened();
    await running(page);
    const click = (id) => page.call((name) => document.getElementById(name).click(), id);
    await click('keys');
    await says(page, 'walk forward, back', 'keys');
    await says(page, 'In full screen, Escape goes to the game', 'keys');
    await click('fullscreen');
    await page.until('the full screen', () => document.fullscreenElement);
    await says(page, 'Leave full screen', 'full-screen');
    assert.strictEqual(await page.call(() => document.activeElement.id), 'canvas');
    await click('fullscreen');
    await page.until('the window', () => !document.fullscreenElement);
});

await round('a file that is missing, and one that is damaged', async () => {
    const faults = {castleMAPPED: 404, brick: 'damaged'};
    server.fault = (path) => Object.entries(faults).find(([name]) => path.includes(name))?.[1];
    const page = await opened({before: (its) => its.send('Network.clearBrowserCache')});
    await says(page, 'castleMAPPED.obj', 'missing');
    await says(page, 'brick.bmp', 'missing');
    server.fault = () => undefined;
    server.requests.length = 0;
    await press(page);
    await running(page);
    assert.deepStrictEqual(server.requests.map((path) => basename(path).split('.')[0]).sort(),
        ['brick', 'castleMAPPED']);
});

await round('a picture that the graphics card takes away', async () => {
    const page = await opened();
    await running(page);
    await page.call(() => document.getElementById('canvas').getContext('webgl2')
        .getExtension('WEBGL_lose_context').loseContext());
    await says(page, 'The graphics card took its picture away', 'lost');
    await press(page);
    await running(page);
});

await round('a program that cannot start', async () => {
    const page = await opened({before: (its) => its.before(() => {
        WebAssembly.instantiate = () => Promise.reject(new Error('no room for it'));
    })});
    await says(page, 'no room for it', 'stopped');
});

await round('a browser without JavaScript', async () => {
    const page = await opened({before: (its) =>
        its.send('Emulation.setScriptExecutionDisabled', {value: true})});
    await says(page, 'JavaScript switched off', 'no-script');
});

await round('a phone', async () => {
    const page = await opened({width: 390, height: 800, ratio: 2, mobile: true,
        before: (its) => its.send('Emulation.setTouchEmulationEnabled', {enabled: true})});
    await says(page, 'played with a keyboard', 'phone');
    assert.deepStrictEqual(dataOf(server.requests), []);
    await press(page);
    await running(page);
});

await round('a page that was opened as a file', async () => {
    const page = await opened({address: `file://${site}/index.html`});
    await says(page, 'Any web server will do', 'file');
});

await browser.close();

await test('a browser without WebGL 2', async () => {
    const plain = new Browser('--disable-3d-apis');
    const page = await plain.page();
    await page.open(address);
    await says(page, 'draws with WebGL 2', 'no-webgl');
    await plain.close();
});

server.close();
