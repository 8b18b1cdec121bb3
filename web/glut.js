// GLUT's window and its events. It is the page's <canvas id="canvas" tabindex="0">, without border
// or padding, as large as the page's style makes it, whatever size is asked for. The page gives it
// the focus; everything else is done here. The canvas says two things of the program:
// data-lines="LEAST MOST": how many the picture may have; the page shows it larger or smaller
// data-repeats="KEYS": those that come again and again while they are held, at present
//
// getWasmTableEntry, GL and ExitStatus are inner names of Emscripten's, which it may change: tried
// with its versions 3.1.6 and 3.1.69.

const LibraryGLUT = {
    $glut: {redisplay: true},

    glutInit: function (count, words) {},
    glutInitDisplayMode: function (mode) {},  // openWindow has the game's: double, depth, stencil
    glutInitWindowSize: function (width, height) {},
    glutFullScreen: function () {},
    glutDisplayFunc: function (call) { glut.display = getWasmTableEntry(call); },
    glutReshapeFunc: function (call) { glut.reshape = getWasmTableEntry(call); },
    glutKeyboardFunc: function (call) { glut.keyboard = getWasmTableEntry(call); },
    glutKeyboardUpFunc: function (call) { glut.keyboardUp = getWasmTableEntry(call); },
    glutMouseFunc: function (call) { glut.mouse = getWasmTableEntry(call); },
    glutPassiveMotionFunc: function (call) { glut.motion = getWasmTableEntry(call); },
    glutIdleFunc: function (call) { glut.idle = getWasmTableEntry(call); },
    glutPostRedisplay: function () { glut.redisplay = true; },

    refuse: function (call) { abort(`${UTF8ToString(call)}: only what the game needs is here`); },

    openWindow__deps: ['$GL'],
    openWindow: function (title) {
        document.title = UTF8ToString(title);
        const context = GL.createContext(document.getElementById('canvas'),
            {majorVersion: 2, alpha: false, antialias: false, depth: true, stencil: true,
                powerPreference: 'high-performance'});
        GL.makeContextCurrent(context || abort('This browser has no WebGL 2 for the game.'));
    },

    // Runs turns until the game ends: what has happened, one update, one frame. There is one at
    // most for a picture of the display, and 60 in a second. Like GLUT's it does not return.
    glutMainLoop: function () {
        const period = 1000 / 60;  // milliseconds
        const early = 4;           // so much before its time a turn may start
        const repeatTurns = 2;     // from one event of a held key to the next
        const widest = 8192;       // pixels: of wider pictures, graphics cards may draw a part alone
        const named = {Backspace: 8, Enter: 13, Escape: 27, Space: 32, Comma: 44, Period: 46,
            Delete: 127};
        const canvas = document.getElementById('canvas');
        const context = canvas.getContext('webgl2');
        const listening = new AbortController();
        const [least, most] = canvas.dataset.lines.split(' ').map(Number);
        const held = new Map();        // keys and buttons: the calls that let go of them
        const repeating = new Map();   // the keys among them, and for how many turns
        const happened = [];           // calls that wait for the next turn
        const pointer = {x: 0, y: 0};  // in pixels of the picture
        let box;                       // of the canvas, in pixels of the display
        let resized = true;
        let next = 0;

        const on = (target, type, act) =>
            target.addEventListener(type, act, {signal: listening.signal});
        const tell = (call, ...how) => happened.push(call.bind(null, ...how, pointer.x, pointer.y));
        const release = (id) => {
            const letGo = held.get(id);
            repeating.delete(id);
            held.delete(id) && letGo();
        };

        // The character of a key event. Where the layout or an input method gives one that GLUT
        // lacks, it is that which the same key has on a keyboard for English.
        const typedBy = (event) => {
            if (/^[ -~]$/.test(event.key)) {
                return event.key.charCodeAt(0);
            }
            const foreign = /^(.|Dead|Process|Unidentified)$/u.test(event.key);
            const name = foreign ? event.code : event.key;
            const [, letter] = /^(?:Key|Digit)(.)$/.exec(name) ?? [];
            if (!letter) {
                return named[name];
            }
            const large = event.shiftKey !== event.getModifierState('CapsLock');
            return (large ? letter : letter.toLowerCase()).charCodeAt(0);
        };
        on(canvas, 'keydown', (event) => {
            const id = event.code || event.key;
            const typed = typedBy(event);
            if (!typed || event.ctrlKey || event.altKey || event.metaKey) {
                return;
            }
            event.preventDefault();
            // The system's own repetition, which is another one everywhere, does not count.
            if (!held.has(id) && !event.repeat) {
                held.set(id, () => tell(glut.keyboardUp, typed));
                tell(glut.keyboard, typed);
                repeating.set(id, {typed, turns: 0});
            }
        });
        on(canvas, 'keyup', (event) => release(event.code || event.key));
        const mouse = (event) => {
            const {left, top, width, height} = canvas.getBoundingClientRect();
            pointer.x = Math.round((event.clientX - left) * canvas.width / width);
            pointer.y = Math.round((event.clientY - top) * canvas.height / height);
        };
        on(canvas, 'mousedown', (event) => {
            mouse(event);
            held.set(event.button, () => tell(glut.mouse, event.button, 1));
            tell(glut.mouse, event.button, 0);
        });
        on(canvas, 'mousemove', (event) => {
            mouse(event);
            event.buttons === 0 && tell(glut.motion);
        });
        on(window, 'mouseup', (event) => {
            mouse(event);
            release(event.button);
        });
        on(canvas, 'blur', () => [...held.keys()].forEach(release));  // let go of elsewhere
        on(window, 'resize', () => resized = true);
        const observer = new ResizeObserver(([entry]) => {
            [box] = entry.devicePixelContentBoxSize || [];
            resized = true;
        });
        try {
            observer.observe(canvas, {box: 'device-pixel-content-box'});
        } catch (unknownBox) {
            observer.observe(canvas);  // a browser that rounds by itself
        }

        const resize = () => {
            // The browser's own size is exact, but not where it imitates another display.
            const ratio = devicePixelRatio;
            const exact = box && Math.abs(box.inlineSize - canvas.clientWidth * ratio) < 2;
            const width = exact ? box.inlineSize : canvas.clientWidth * ratio;
            const height = exact ? box.blockSize : canvas.clientHeight * ratio;
            canvas.height = Math.min(Math.max(Math.round(height), least), most);
            canvas.width = Math.min(Math.round(width * canvas.height / height), widest);
            glut.reshape(canvas.width, canvas.height);
            resized = false;
            glut.redisplay = true;
        };
        const turn = (time) => {
            next = Math.max(next + period, time);
            resized && resize();
            while (happened.length > 0) {
                happened.shift()();
            }
            repeating.forEach((key) => ++key.turns % repeatTurns === 0
                && canvas.dataset.repeats.includes(String.fromCharCode(key.typed))
                && tell(glut.keyboard, key.typed));
            glut.idle();
            if (glut.redisplay) {
                glut.redisplay = false;
                glut.display();
            }
        };
        const frame = (time) => {
            if (context.isContextLost()) {
                listening.abort();
                return;
            }
            try {
                time + early >= next && turn(time);
                requestAnimationFrame(frame);
            } catch (end) {
                listening.abort();
                end instanceof ExitStatus || abort(end);  // the page is told of both
            }
        };
        requestAnimationFrame(frame);
        throw 'unwind';  // main's caller knows it: nothing is destroyed yet
    },
};
autoAddDeps(LibraryGLUT, '$glut');
const {library: linked} = LibraryManager;
mergeInto(linked, LibraryGLUT);
