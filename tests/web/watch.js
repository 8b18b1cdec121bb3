// Runs in the page, before anything of it: looks at the game from outside, through the WebGL calls
// and the frames that it asks for.
//
// watched.frames       how many it has drawn
// watched.first        when the first was, in milliseconds since navigation
// watched.errors       what went wrong, and what the page or the game complained of
// watched.step(count, drawn, ms, matrices)
//                      from then on frames come only by this, so many milliseconds after one
//                      another for the game, and in truth at once: what it does is the same on any
//                      machine. Returns what each one took and, if asked for, the matrices that it
//                      gave to the shaders; one that is not drawn does all but the draw calls.
//                      Throws what went wrong before or meanwhile.
// watched.vertices()   the vertices of the next frame: the distinct ones of each draw call, added up
(() => {
    const watched = {frames: 0, first: undefined, errors: []};
    const kept = [];  // the calls that wait for the next frame
    let now = {};
    let clock = 0;  // milliseconds, as the frames are told
    let held = false;
    let drawing = true;
    let counted;

    const frame = (time) => {
        now = {ms: 0, calls: 0, created: 0, matrices: {}};
        clock = time;
        const start = performance.now();
        kept.splice(0).forEach((callback) => callback(time));
        now.ms = performance.now() - start;
        Object.keys(now.matrices).forEach((name) => now.matrices[name] = now.matrices[name].join());
        if (now.calls > 0) {
            watched.frames++;
            watched.first ??= performance.now();
        }
        return now;
    };
    const real = window.requestAnimationFrame;
    window.requestAnimationFrame = (callback) => {
        if (kept.push(callback) === 1 && !held) {
            real.call(window, (time) => held || frame(time));
        }
    };

    const types = WebGL2RenderingContext.prototype;
    const wrap = (name, note) => {
        const method = types[name];
        types[name] = function(...words) {
            return note.apply(this, words) ? method.apply(this, words) : undefined;
        };
    };
    wrap('drawElements', function(mode, count, type, offset) {
        now.calls++;
        if (counted) {
            const indices = new Uint32Array(count);
            this.getBufferSubData(this.ELEMENT_ARRAY_BUFFER, offset, indices);
            counted.vertices += new Set(indices).size;
        }
        return drawing;
    });
    for (const name of ['createBuffer', 'createTexture', 'createShader', 'createProgram',
        'createVertexArray', 'bufferData', 'texImage2D']) {
        wrap(name, () => ++now.created);
    }

    const names = new Map();  // of the places for the shaders' values
    const {getUniformLocation} = types;
    types.getUniformLocation = function(program, name) {
        const place = getUniformLocation.call(this, program, name);
        names.set(place, name);
        return place;
    };
    // This alone would take longer than all that a frame does, so it comes when it is asked for.
    let recording = false;
    let recordMatrices = () => {
        recordMatrices = () => {};
        wrap('uniformMatrix4fv', (place, turned, values, first = 0, count = 16) => !recording
            || (now.matrices[names.get(place)] ??= []).push(values.slice(first, first + count)));
    };

    watched.step = async (count, drawn, ms = 17, matrices = false) => {
        held = true;
        recording = matrices;
        recording && recordMatrices();
        // Where it waits for nothing, it has ended.
        for (let i = 0; kept.length === 0 && i < 100; ++i) {
            await new Promise((done) => setTimeout(done));
        }
        const frames = [];
        drawing = drawn;
        while (frames.length < count && kept.length > 0) {
            frames.push(frame(clock + ms));
        }
        drawing = true;
        if (watched.errors.length > 0) {
            throw new Error(watched.errors.join('; '));
        }
        return frames;
    };

    watched.vertices = async () => {
        const count = counted = {vertices: 0};
        await watched.step(1, false);
        counted = undefined;
        return count.vertices;
    };

    const {error} = console;
    console.error = (...words) => {
        watched.errors.push(words.join(' '));
        error.apply(console, words);
    };
    window.addEventListener('error', ({message}) => watched.errors.push(message));
    window.addEventListener('unhandledrejection', ({reason}) => watched.errors.push(`${reason}`));
    window.watched = watched;
})();
