// Draws the same scenes natively and in a browser, and compares them picture by picture.
//
// Usage: pictures.mjs ROOT NATIVE PROGRAM.js PICTURE_FOLDER [NAME_PART]
// Leaves native/, web/ and worst.png: the worst picture as native, web and their difference. With
// NAME_PART only the scenes whose names contain it.

import {execFileSync} from 'node:child_process';
import {mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync} from 'node:fs';
import {basename, dirname, join} from 'node:path';
import {Browser, serve} from './browser.mjs';

const WIDTH = 1280;
const HEIGHT = 1024;
const VISIBLE = 0.05 * 255;  // a difference in one of a pixel's three values
const ALLOWED = 0.005;       // of the pixels may have one;
const TILE = 64;             // pixels: in no square of this size
const ALLOWED_THERE = 0.03;  // more than this part may look like none beside it in the other

const [root, native, program, folder, part = ''] = process.argv.slice(2);
const names = {native: join(folder, 'native'), web: join(folder, 'web')};
for (const name of Object.values(names)) {
    rmSync(name, {recursive: true, force: true});
    mkdirSync(name, {recursive: true});
}

function drawNatively() {
    execFileSync('xvfb-run', ['--auto-servernum',
        `--server-args=-screen 0 ${WIDTH}x${HEIGHT}x24 -nolisten tcp`, native, names.native, part],
    {cwd: join(root, 'data'), env: {...process.env, LIBGL_ALWAYS_SOFTWARE: '1'}, stdio: 'ignore'});
}

// In the page: all scenes at once. The pictures stay in its file system.
async function draw(script, files, name) {
    await new Promise((done, failed) => {
        const element = document.createElement('script');
        Object.assign(element, {src: script, onload: done, onerror: failed});
        document.head.append(element);
    });
    const ended = new Promise((done, failed) => {
        const options = {print: console.log, printErr: console.error, onExit: done,
            onAbort: (what) => failed(new Error(what))};
        window.drawn = createPictures(options).then(async (pictures) => {
            for (const file of files) {
                const bytes = await (await fetch(`data/${file}`)).arrayBuffer();
                pictures.FS.writeFile(file, new Uint8Array(bytes));
            }
            pictures.FS.mkdir('pictures');
            pictures.callMain(['pictures', name]);
            return pictures;
        });
        window.drawn.catch(failed);
    });
    if (await ended !== 0) {
        throw new Error(`it ended with ${await ended}`);
    }
    return (await window.drawn).FS.readdir('pictures').filter((file) => file.endsWith('.ppm'));
}

// In the page: a picture's bytes as a data URL.
async function fetchPicture(file) {
    const bytes = (await window.drawn).FS.readFile(`pictures/${file}`);
    return new Promise((done) => {
        const reader = new FileReader();
        reader.onload = () => done(reader.result);
        reader.readAsDataURL(new Blob([bytes]));
    });
}

async function drawInBrowser() {
    const server = await serve(root, dirname(program), folder);
    writeFileSync(join(folder, 'pictures.html'), '<!doctype html><style>body {margin: 0}'
        + `canvas {display: block; width: ${WIDTH}px; height: ${HEIGHT}px}</style>`
        + '<canvas id="canvas" tabindex="0"></canvas>');
    const browser = new Browser();
    const page = await browser.page(WIDTH, HEIGHT);
    await page.open(`${server.address}pictures.html`);
    const data = readdirSync(join(root, 'data'));
    for (const file of await page.call(draw, basename(program), data, part)) {
        const url = await page.call(fetchPicture, file);
        writeFileSync(join(names.web, file), Buffer.from(url.split(',')[1], 'base64'));
    }
    await browser.close();
    server.close();
}

// The red, green and blue values of a picture.
function valuesOf(file) {
    const header = `P6\n${WIDTH} ${HEIGHT}\n255\n`;
    const bytes = readFileSync(file);
    if (bytes.toString('latin1', 0, header.length) !== header
        || bytes.length !== header.length + 3 * WIDTH * HEIGHT) {
        throw new Error(`${file} is no picture of ${WIDTH}x${HEIGHT}`);
    }
    return bytes.subarray(header.length);
}

const differ = (a, b, i, j) => Math.abs(a[i] - b[j]) > VISIBLE
    || Math.abs(a[i + 1] - b[j + 1]) > VISIBLE || Math.abs(a[i + 2] - b[j + 2]) > VISIBLE;

// Whether the value of a at i is at this place in b, or one pixel beside it: an edge that runs
// through the middle of a pixel, and a text at the end of one, may go either way.
function isNear(a, b, i) {
    for (const row of [-3 * WIDTH, 0, 3 * WIDTH]) {
        for (const j of [i + row - 3, i + row, i + row + 3]) {
            if (j >= 0 && j < b.length && !differ(a, b, i, j)) {
                return true;
            }
        }
    }
    return false;
}

// The part of the pixels that visibly differ, and that of the worst tile that have no likeness.
function difference(file) {
    const [a, b] = Object.values(names).map((name) => valuesOf(join(name, file)));
    const across = WIDTH / TILE;
    const tiles = new Array(across * HEIGHT / TILE).fill(0);
    let all = 0;
    for (let i = 0; i < a.length; i += 3) {
        if (differ(a, b, i, i)) {
            all++;
            const [x, y] = [i / 3 % WIDTH, Math.floor(i / 3 / WIDTH)];
            tiles[across * Math.floor(y / TILE) + Math.floor(x / TILE)] +=
                !(isNear(a, b, i) && isNear(b, a, i));
        }
    }
    return {file, all: all / (WIDTH * HEIGHT), worst: Math.max(...tiles) / TILE ** 2};
}

drawNatively();
await drawInBrowser();

const drawn = readdirSync(names.native).sort();
const lost = drawn.filter((file) => !readdirSync(names.web).includes(file));
const table = drawn.filter((file) => !lost.includes(file)).map(difference);
const excess = ({all, worst}) => Math.max(all / ALLOWED, worst / ALLOWED_THERE);
table.sort((one, other) => excess(other) - excess(one));
const percent = (part) => (100 * part).toFixed(3).padStart(8);
console.log('  in all  worst tile, % of the pixels');
for (const {file, all, worst} of table) {
    console.log(`${percent(all)}    ${percent(worst)}  ${basename(file, '.ppm')}`);
}
if (table.length > 0) {
    const [a, b] = Object.values(names).map((name) => join(name, table[0].file));
    execFileSync('convert', [a, b, '(', a, b, '-compose', 'difference', '-composite', ')',
        '+append', join(folder, 'worst.png')]);
}
if (table.length === 0 || lost.length > 0 || excess(table[0]) > 1) {
    console.error(`look at ${join(folder, 'worst.png')}: ${lost.length} pictures are missing, and `
        + `no more than ${100 * ALLOWED} % of the pixels may differ by more than 5 %, in no tile `
        + `${100 * ALLOWED_THERE} % from all the pixels there`);
    process.exit(1);
}
