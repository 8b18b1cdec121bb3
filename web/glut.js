// GLUT's window and its events. It is the page's <canvas id="canvas" tabindex="0">, without border
// or padding, as large as the page's style makes it, whatever size is asked for. The page gives it
// the focus; everything else is done here.

// The linker's own OpenGL is put out of reach: what this folder lacks does not link, instead of
// doing something else. WebGL's functions keep their names with "emscripten_" in front.
const {library: linked} = LibraryManager;
for (const name of Object.keys(linked).filter((name) => /^gl[A-Z]/.test(name))) {
    delete linked[name];
}

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
            {majorVersion: 2, alpha: false, antialias: false, depth: true, stencil: true});
        GL.makeContextCurrent(context || abort('This browser has no WebGL 2 for the game.'));
    },

    // Runs turns until the game ends: what has happened, one update, one frame. There is one at
    // most for a picture of the display, and 60 in a second. Like GLUT's it does not return.
    glutMainLoop: function () {
        const period = 1000 / 60;  // milliseconds
        const early = 4;           // so much before its time a turn may start
        const named = {Backspace: 8, Enter: 13, Escape: 27, Delete: 127};
        const canvas = document.getElementById('canvas');
        const listening = new AbortController();
        const held = new Set();        // keys
        const happened = [];           // calls that wait for the next turn
        const pointer = {x: 0, y: 0};  // in pixels of the display
        let resized = true;
        let next = 0;

        const on = (target, type, act) =>
            target.addEventListener(type, act, {signal: listening.signal});
        const tell = (call, ...how) => happened.push(call.bind(null, ...how, pointer.x, pointer.y));
        const press = (key) => held.add(key) && tell(glut.keyboard, key);
        const release = (key) => held.delete(key) && tell(glut.keyboardUp, key);
        const key = (event) => {
            const typed = named[event.key] || (event.key.length === 1 && event.key.charCodeAt(0));
            if (typed && typed < 128 && !event.ctrlKey && !event.altKey && !event.metaKey) {
                event.preventDefault();
                (event.type === 'keydown' ? press : release)(typed);
            }
        };
        const mouse = (event) => {
            pointer.x = Math.round(event.clientX * devicePixelRatio);
            pointer.y = Math.round(event.clientY * devicePixelRatio);
            if (event.type !== 'mousemove') {
                tell(glut.mouse, event.button, event.type === 'mousedown' ? 0 : 1);
            } else if (event.buttons === 0) {
                tell(glut.motion);
            }
        };
        on(canvas, 'keydown', key);
        on(canvas, 'keyup', key);
        on(canvas, 'blur', () => held.forEach(release));  // let go of elsewhere
        on(canvas, 'mousedown', mouse);
        on(canvas, 'mousemove', mouse);
        on(window, 'mouseup', mouse);
        on(window, 'resize', () => resized = true);

        const resize = () => {
            canvas.width = Math.round(canvas.clientWidth * devicePixelRatio);
            canvas.height = Math.round(canvas.clientHeight * devicePixelRatio);
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
            glut.idle();
            if (glut.redisplay) {
                glut.redisplay = false;
                glut.display();
            }
        };
        const frame = (time) => {
            try {
                time + early >= next && turn(time);
                requestAnimationFrame(frame);
            } catch (end) {
                listening.abort();
                handleException(end);
            }
        };
        requestAnimationFrame(frame);
        throw 'unwind';  // main's caller knows it: nothing is destroyed yet
    },
};
autoAddDeps(LibraryGLUT, '$glut');
mergeInto(linked, LibraryGLUT);
