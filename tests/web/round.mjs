// Plays a round in a browser by real key events, from the title to a won battle and out again. It
// looks for the texts on the screen, as a player would, and leaves pictures.
//
// Usage: round.mjs SITE PICTURE_FOLDER

import assert from 'node:assert';
import {mkdirSync} from 'node:fs';
import {join} from 'node:path';
import {Browser, serve} from './browser.mjs';
import {watch} from './watch.mjs';

const [site, pictures] = process.argv.slice(2);
mkdirSync(pictures, {recursive: true});

// Where the texts stand at 1280x1024: x, y, width, height.
const TALK_TITLE = [16, 12, 260, 24];
const FIGHT_OPTIONS = [16, 846, 150, 24];
const STATUS_PANEL = [952, 846, 210, 24];
const MESSAGE = [16, 40, 480, 24];
const TEXT_PIXELS = 100;  // at the least, where text stands
const KEYS_A_FRAME = 4;
const CUBE_TURNS = 181;  // frames until the cube rests again

const server = await serve(site);
const browser = new Browser();
const page = await browser.page();
await page.before(watch);
await page.open(server.address);
await page.until('the title', () => window.watched?.frames > 3);

const frames = (count, drawn = false) =>
    page.call((...words) => window.watched.step(...words), count, drawn);

let taken = 0;
async function picture(name) {
    taken++;
    await frames(1, true);
    await page.picture(join(pictures, `${String(taken).padStart(2, '0')}-${name}.png`));
    console.log(`   ${name}`);
}

const white = (part) => page.call((...place) => window.watched.white(...place), ...part);
const textIn = async (part) => (await white(part)).length >= TEXT_PIXELS;
const noTextIn = async (part) => !await textIn(part);

// Short presses, a few between two frames.
async function press(key, times = 1) {
    for (let left = times; left > 0; left -= KEYS_A_FRAME) {
        await page.press(key, Math.min(left, KEYS_A_FRAME));
        await frames(1);
    }
}

// Waits until the condition holds; presses the key, where one is named, meanwhile.
async function waitFor(what, condition, key = undefined) {
    for (let i = 0; i < 100; ++i) {
        if (key) {
            await press(key);
        }
        await frames(5);
        if (await condition()) {
            return;
        }
    }
    await picture('failed');
    throw new Error(`waited in vain for ${what}`);
}

// The battle message on the screen, told by the gaps between its words.
async function message() {
    const columns = await white(MESSAGE);
    const between = (from, to) => columns.filter((x) => x >= from && x < to).length;
    if (columns.length < TEXT_PIXELS) {
        return 'none';
    }
    if (between(200, 220) < 10) {
        return 'enemy';
    }
    return between(454, 480) < 10 ? 'player' : 'defended';
}
const messageIs = (wanted) => async () => await message() === wanted;

await picture('title');
await press('n');
await frames(60);
await picture('turning-cube');
await frames(CUBE_TURNS - 60);
await press('m');
await frames(CUBE_TURNS);

await press('p');
await waitFor('the status panel', () => textIn(STATUS_PANEL));
await picture('town');

// A key that is held repeats.
await press('a', 12);
await page.key('keyDown', 'w');
for (let i = 0; i < 10; ++i) {
    await page.key('keyDown', 'w', {autoRepeat: true});
    await frames(2);
}
await picture('walking');
await page.key('keyUp', 'w');

// The townsperson stands 5 to the right of the start, the first enemy 5 to the left, behind a
// burning tree.
await press('s', 10);
await press('d', 44);
await waitFor('a talk', () => textIn(TALK_TITLE), 'w');
await picture('talk');
await waitFor('the end of the talk', () => noTextIn(TALK_TITLE));

await press('a', 32);
await press('s', 16);
await press(',', 42);
await press('a', 16);
await waitFor('the battle panel', () => textIn(FIGHT_OPTIONS), 'w');
await picture('battle');

await press('s');
await press('Enter');
await waitFor('the message of the defence', messageIs('defended'));
await picture('defended');
await waitFor('the enemy\'s message', messageIs('enemy'));
await picture('enemy-hit');
await waitFor('the player\'s turn', messageIs('none'));

await press('s');
await press('Enter');
await waitFor('the message of the special move', messageIs('player'));
await picture('special');
await waitFor('the enemy\'s second message', messageIs('enemy'));
await waitFor('the player\'s second turn', messageIs('none'));

await press('w', 2);
await press('Enter');
await waitFor('the win', () => noTextIn(FIGHT_OPTIONS));
await picture('town-after-the-win');

await press('Escape');
await waitFor('the title', () => noTextIn(STATUS_PANEL));
await picture('title-again');
await press('Escape');
await page.until('the end', () => document.body.innerText.includes('The game has ended.'));
assert.deepStrictEqual(page.console.filter((line) => /exception|error/i.test(line)), []);

await browser.close();
server.close();
