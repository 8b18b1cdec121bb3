// The page round the game: loads its files, gives it the window, and says what happens.
'use strict';

(() => {

const FILES = JSON.parse(document.getElementById('files').textContent);
const MEGABYTE = 1e6;
const RESTING_MS = 3000;  // from the pointer's last move until the buttons go

const part = (id) => document.getElementById(id);
const canvas = part('canvas');

// --- What the page says ------------------------------------------------------------

// The state is loading, running or stopped; a button offers what can be done about it.
function say(state, text, button = '', action = undefined) {
    document.body.dataset.state = state;
    document.body.classList.toggle('running', state === 'running');
    part('state').textContent = text;
    part('failed').replaceChildren();
    part('again').hidden = !button;
    part('again').textContent = button;
    part('again').onclick = action;
    if (button) {
        part('again').focus({preventScroll: true});
    }
}

let over = false;

// The game runs no longer; what is left of it may not speak any more.
function stop(text) {
    if (over) {
        return;
    }
    over = true;
    if (document.fullscreenElement) {
        document.exitFullscreen();
    }
    say('stopped', text, 'Play again', () => location.reload());
}

function crash(reason) {
    if (!over) {
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
    const all = sum((file) => file.packed);
    part('bar').max = all;
    part('bar').value = arrived;
    part('megabytes').textContent = `${arrived.toFixed(1)} of ${all.toFixed(1)} MB`;
}

// A name holds its content's hash: what the browser has kept is never out of date. What did not
// arrive may have been kept as well, and is asked for anew.
async function load(file) {
    const answer = await fetch(file.path, {cache: file.failed ? 'reload' : 'force-cache'});
    if (!answer.ok) {
        throw new Error(`the server answers ${answer.status}`);
    }
    const counted = answer.body.pipeThrough(new TransformStream({
        transform(bytes, onwards) {
            file.arrived += bytes.length;
            showProgress();
            onwards.enqueue(bytes);
        },
    }));
    const unpacked = counted.pipeThrough(new DecompressionStream('gzip'));
    const bytes = new Uint8Array(await new Response(unpacked).arrayBuffer());
    if (bytes.length !== file.size) {
        throw new TypeError('another length');
    }
    contents.set(file.name, bytes);
}

async function loadAll() {
    say('loading', 'Loading the town.');
    const missing = FILES.filter((file) => !contents.has(file.name));
    await Promise.all(missing.map((file) => {
        file.arrived = 0;
        return load(file).then(() => { file.failed = undefined; }, (reason) => {
            file.arrived = 0;
            file.failed = reason instanceof TypeError ? 'not whole' : reason.message;
        });
    }));
    const failed = missing.filter((file) => file.failed);
    if (failed.length === 0) {
        start();
        return;
    }
    say('failed', failed.length === 1 ? 'A file of the game did not arrive:'
        : `${failed.length} files of the game did not arrive:`, 'Try again', loadAll);
    part('failed').replaceChildren(...failed.map((file) => {
        const line = document.createElement('li');
        line.textContent = `${file.name} (${file.failed})`;
        return line;
    }));
}

// --- Playing -----------------------------------------------------------------------

// Takes a file out of those that have arrived.
function take(name) {
    const bytes = contents.get(name);
    contents.delete(name);
    return bytes;
}

async function start() {
    part('state').textContent = 'Starting.';
    const script = document.createElement('script');
    script.src = URL.createObjectURL(new Blob([take('talvery.js')], {type: 'text/javascript'}));
    await new Promise((done) => {
        script.onload = done;
        document.head.append(script);
    });
    const game = await createTalvery({
        wasmBinary: take('talvery.wasm'),
        print: console.log,
        printErr: console.error,
        onExit: () => stop('The game has ended. Another round?'),
        onAbort: crash,
    });
    for (const name of contents.keys()) {
        game.FS.writeFile(name, take(name), {canOwn: true});
    }
    await nextPicture();
    game.callMain([]);
    if (!over) {
        say('running', '');
        wake();
        canvas.focus();
    }
    // The motions are read while the game runs; the rest only takes memory.
    FILES.filter(({name}) => /\.(bmp|obj)$/.test(name)).forEach(({name}) => game.FS.unlink(name));
}

// Resolves after the browser has shown what the page says by now.
function nextPicture() {
    return new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
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

part('keys').onclick = () => {
    const shown = document.body.classList.toggle('help');
    part('keys').setAttribute('aria-expanded', shown);
    canvas.focus();
};
part('page').addEventListener('click', () => canvas.focus());

part('fullscreen').hidden = !document.fullscreenEnabled;
async function changeScreen() {
    canvas.focus();
    if (document.fullscreenElement) {
        await document.exitFullscreen();
        return;
    }
    await document.documentElement.requestFullscreen();
    await navigator.keyboard?.lock?.(['Escape']);
}
// A browser that refuses does not end the game.
part('fullscreen').onclick = () => changeScreen().catch(console.warn);
document.addEventListener('fullscreenchange', () => {
    part('fullscreen').textContent =
        document.fullscreenElement ? 'Leave full screen' : 'Full screen';
});
if (navigator.keyboard?.lock) {
    part('leaving').textContent =
        'In full screen, Escape goes to the game; hold it to leave full screen.';
}

canvas.addEventListener('webglcontextlost', (event) => {
    event.preventDefault();
    stop('The graphics card took its picture away, as it does when its driver starts anew.');
});
canvas.addEventListener('contextmenu', (event) => event.preventDefault());
window.addEventListener('error', ({error}) => error && crash(error));
window.addEventListener('unhandledrejection', ({reason}) => crash(reason));

const why = obstacle();
if (why) {
    say('stopped', why);
} else if (matchMedia('(any-pointer: coarse)').matches
           && !matchMedia('(any-pointer: fine)').matches) {
    say('stopped', 'Talvery is played with a keyboard, and this device seems to have none.',
        'Load it all the same', loadAll);
} else {
    loadAll();
}

})();
