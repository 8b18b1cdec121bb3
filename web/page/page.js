// The page round the game: loads its files, gives it the window, and says what happens.
'use strict';
/* global unpackPicture */

(() => {

const FILES = JSON.parse(document.getElementById('files').textContent);
const PROGRAM = 'talvery.wasm';
const SCENES = ['title', 'town', 'battle'];  // in the order of the game's status
const MEGABYTE = 1e6;
const RESTING_MS = 3000;  // from the pointer's last move until the buttons go
const LINE = 40;          // pixels that an arrow key scrolls the help

const byId = (id) => document.getElementById(id);
const canvas = byId('canvas');

// --- What the page says ------------------------------------------------------------

// The state is loading, running or stopped; a button offers what can be done about it.
function say(state, text, button = '', action = undefined) {
    document.body.dataset.state = state;
    document.body.classList.toggle('running', state === 'running');
    byId('state').textContent = text;
    byId('failed').replaceChildren();
    byId('again').hidden = !button;
    byId('again').textContent = button;
    byId('again').onclick = action;
    if (button) {
        byId('again').focus({preventScroll: true});
    }
}

let ended = false;

// The game runs no longer; what is left of it may not speak any more.
function stop(text) {
    if (ended) {
        return;
    }
    ended = true;
    if (document.fullscreenElement) {
        document.exitFullscreen();
    }
    say('stopped', text, 'Play again', () => location.reload());
}

function crash(reason) {
    if (!ended) {
        console.error(reason);
    }
    stop(`The game had to stop: ${reason?.message ?? reason}`);
}

// Why the game can't be played here, or nothing.
function obstacle() {
    if (location.protocol === 'file:') {
        return 'Opened as a file, the page may not load the game. Any web server will do: '
            + 'python3 -m http.server, in this folder.';
    }
    if (!('WebAssembly' in window) || !('DecompressionStream' in window)) {
        return 'This browser is too old for the game: it cannot unpack its files. '
            + 'A newer one can.';
    }
    const trial = document.createElement('canvas').getContext('webgl2');
    if (!trial) {
        return 'The game draws with WebGL 2, which this browser lacks or has switched off. '
            + 'Another browser, or a newer driver for the graphics card, may have it.';
    }
    trial.getExtension('WEBGL_lose_context')?.loseContext();
    return undefined;
}

// --- Loading -----------------------------------------------------------------------

const contents = new Map();  // of the files that have arrived, unpacked

function showProgress() {
    const sum = (of) => FILES.reduce((total, file) => total + of(file), 0) / MEGABYTE;
    const arrived = sum((file) => file.arrived ?? 0);
    const all = sum((file) => file.size);
    byId('bar').max = all;
    byId('bar').value = arrived;
    byId('megabytes').textContent = `${arrived.toFixed(1)} of ${all.toFixed(1)} MB`;
}

// What a server sends that is not the file which the page names.
class WrongAnswer extends Error {}

// Resolves to the bytes of a file as they travel.
async function fetchBytes(file, cache) {
    file.arrived = 0;
    const answer = await fetch(file.path, {cache});
    if (!answer.ok) {
        throw new WrongAnswer(`the server answers ${answer.status}`);
    }
    const counted = answer.body.pipeThrough(new TransformStream({
        transform(bytes, onwards) {
            file.arrived += bytes.length;
            showProgress();
            onwards.enqueue(bytes);
        },
    }));
    const bytes = await new Response(counted).arrayBuffer();
    if (bytes.byteLength !== file.size) {
        throw new WrongAnswer('not whole');
    }
    return bytes;
}

async function unzip(bytes) {
    const whole = new Response(bytes).body.pipeThrough(new DecompressionStream('gzip'));
    return new Uint8Array(await new Response(whole).arrayBuffer());
}

async function load(file, cache) {
    const bytes = await fetchBytes(file, cache);
    const content = await (file.full ? unpackPicture(bytes, file.sum).catch(() => undefined)
        : unzip(bytes)).catch(() => { throw new WrongAnswer('damaged'); });
    if (content) {
        contents.set(file.name, content);
    } else {
        byId('state').textContent = 'A picture is not as it was made: some browsers alter what a '
            + 'page unpacks. Loading it as a larger file.';
        Object.assign(file, {...file.full, full: undefined});
        await load(file, cache);
    }
}

// A name holds its content's hash: what the browser has kept is never out of date. It may have kept
// a wrong answer, though, so the server itself is asked before a file counts as failed.
async function loadAll() {
    say('loading', 'Loading the town.');
    const failed = [];
    await Promise.all(FILES.filter(({name}) => !contents.has(name)).map((file) =>
        load(file, 'force-cache').catch(() => load(file, 'reload')).catch((reason) => {
            file.arrived = 0;
            failed.push({name: file.name, reason});
        })));
    if (failed.length > 0) {
        giveUp(failed);
    } else {
        start().catch(crash);
    }
}

// Names the files that did not arrive. Where the server answers wrongly, the page may be one that
// the browser has kept while the files got other names: it is fetched anew, but not twice.
function giveUp(failed) {
    const wrong = failed.some(({reason}) => reason instanceof WrongAnswer);
    if (wrong && performance.getEntriesByType('navigation')[0]?.type !== 'reload') {
        location.reload();
        return;
    }
    say('failed', failed.length === 1 ? 'A file of the game did not arrive:'
        : `${failed.length} files of the game did not arrive:`,
    'Try again', wrong ? () => location.reload() : loadAll);
    byId('failed').replaceChildren(...failed.map(({name, reason}) => {
        const line = document.createElement('li');
        const why = reason instanceof WrongAnswer ? reason.message : 'the connection broke off';
        line.textContent = `${name} (${why})`;
        return line;
    }));
}

// What the page itself names, and has not got.
function missing() {
    const present = {'talvery.js': 'createTalvery' in window,
        'pictures.js': 'unpackPicture' in window, 'events.js': 'tap' in window,
        'touch.js': 'followFingers' in window, 'gamepad.js': 'followGamepads' in window,
        'page.css': getComputedStyle(canvas).position === 'fixed'};
    const reason = new WrongAnswer('it is missing, or the server forbids it');
    return Object.keys(present).filter((name) => !present[name]).map((name) => ({name, reason}));
}

// --- Playing -----------------------------------------------------------------------

async function start() {
    byId('state').textContent = 'Starting.';
    const game = await createTalvery({
        wasmBinary: contents.get(PROGRAM),
        print: console.log,
        printErr: console.error,
        onExit: () => stop('The game has ended. Another round?'),
        onAbort: crash,
    });
    contents.delete(PROGRAM);
    for (const [name, bytes] of contents) {
        game.FS.writeFile(name, bytes, {canOwn: true});
    }
    contents.clear();
    // Until the browser has shown what the page says by now.
    await new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
    game.callMain([]);
    if (!ended) {
        say('running', '');
        wake();
        canvas.focus();
        watchScene(game);
        // The rest is fetched, and all is kept. A browser that keeps nothing, or a page that came
        // over an open connection, goes without.
        Promise.resolve().then(() => navigator.serviceWorker?.register('service_worker.js'))
            .catch(console.warn);
    }
    // The motions are read while the game runs; the rest only takes memory.
    FILES.filter(({name}) => /\.(bmp|obj)$/.test(name)).forEach(({name}) => game.FS.unlink(name));
}

// Keeps what the game shows in the page's data-scene. In a battle, w and s choose: once a press.
function watchScene(game) {
    const scene = SCENES[game.getValue(game._status, 'i32')];
    if (document.body.dataset.scene !== scene) {
        document.body.dataset.scene = scene;
        canvas.dataset.repeats = scene === 'battle' ? 'ad,.' : 'wsad,.';
    }
    ended || requestAnimationFrame(() => watchScene(game));
}

// --- The window --------------------------------------------------------------------

// The buttons show while the pointer moves, and give the keys back to the game.
let resting = 0;
function wake() {
    document.body.classList.remove('resting');
    clearTimeout(resting);
    resting = setTimeout(() => document.body.classList.add('resting'), RESTING_MS);
}
window.addEventListener('pointermove', wake);

byId('keys').onclick = () => {
    const shown = document.body.classList.toggle('help');
    byId('keys').setAttribute('aria-expanded', shown);
    canvas.focus();
};
document.body.addEventListener('click', ({target}) => target.closest('button') || canvas.focus());

byId('fullscreen').hidden = !document.fullscreenEnabled;
async function changeScreen() {
    canvas.focus();
    if (document.fullscreenElement) {
        await document.exitFullscreen();
        return;
    }
    await document.documentElement.requestFullscreen();
    await screen.orientation?.lock?.('landscape').catch(console.warn);
    await navigator.keyboard?.lock?.(['Escape']);
}
// A browser that refuses does not end the game.
byId('fullscreen').onclick = () => changeScreen().catch(console.warn);
document.addEventListener('fullscreenchange', () => {
    byId('fullscreen').textContent =
        document.fullscreenElement ? 'Leave full screen' : 'Full screen';
});
if (navigator.keyboard?.lock) {
    byId('leaving').textContent =
        'In full screen, Escape goes to the game; hold it to leave full screen.';
}

// The game may be installed where the browser offers it, which the page says in one visit only.
window.addEventListener('beforeinstallprompt', (offer) => {
    offer.preventDefault();
    byId('install').hidden = localStorage.getItem('install') !== null;
    localStorage.setItem('install', 'offered');
    byId('install').onclick = () => {
        byId('install').hidden = true;
        offer.prompt();
    };
});

// The help may lie over the game, which keeps the keys; these are not among its own.
canvas.addEventListener('keydown', ({key}) => {
    const help = byId('page');
    const height = help.clientHeight - LINE;
    const way = {ArrowUp: -LINE, ArrowDown: LINE, PageUp: -height, PageDown: height}[key];
    help.scrollBy(0, way ?? 0);
});

for (const type of ['keydown', 'keyup', 'pointermove']) {
    window.addEventListener(type, (event) => {
        byId('caps').hidden = !event.getModifierState('CapsLock');
    });
}

canvas.addEventListener('webglcontextlost', () => {
    stop('The graphics card took its picture away, as it does when its driver starts anew.');
});
[canvas, byId('touch')].forEach((place) =>
    place.addEventListener('contextmenu', (event) => event.preventDefault()));

function begin() {
    const why = obstacle();
    const lacking = missing();
    if (why) {
        say('stopped', why);
    } else if (lacking.length > 0) {
        giveUp(lacking);
    } else {
        window.followFingers();
        window.followGamepads();
        loadAll();
    }
}

// WebKit may still wait for the style sheet here, but not when the whole page has arrived.
if (missing().length > 0) {
    window.addEventListener('load', begin);
} else {
    begin();
}

})();
