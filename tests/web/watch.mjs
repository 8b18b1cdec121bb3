// Runs in the page, before anything of it: looks at the game from outside, through the WebGL calls
// and the frames that it asks for.
//
// watched.frames               how many it has drawn
// watched.first                when the first was, in milliseconds since navigation
// watched.step(count, drawn, ms)   from then on frames come only by this, so many milliseconds after
//                              one another for the game, and in truth at once: a round takes the same
//                              course on any machine. Returns what each one took; one that is not
//                              drawn does all but the draw calls.
// watched.white(x, y, width, height)   the columns of the pixels of pure white in this part of the
//                              next frame; y from above
export function watch() {
    const watched = {frames: 0, first: undefined};
    const kept = [];  // the frames that the game waits for
    let now = {};
    let clock = 0;  // milliseconds, as the frames are told
    let held = false;
    let drawing = true;
    let gl;

    const run = (callback, time) => {
        now = {ms: 0, calls: 0, vertices: 0, created: 0};
        clock = time;
        const start = performance.now();
        callback(time);
        now.ms = performance.now() - start;
        if (now.calls > 0) {
            watched.frames++;
            watched.first ??= performance.now();
        }
        return now;
    };
    const real = window.requestAnimationFrame;
    window.requestAnimationFrame = (callback) =>
        held ? kept.push(callback) : real.call(window, (time) => run(callback, time));

    const types = WebGL2RenderingContext.prototype;
    const wrap = (name, note) => {
        const method = types[name];
        types[name] = function(...words) {
            gl = this;
            return note(...words) ? method.apply(this, words) : undefined;
        };
    };
    const draw = (count) => {
        now.calls++;
        now.vertices += count;
        return drawing;
    };
    wrap('drawArrays', (mode, first, count) => draw(count));
    wrap('drawElements', (mode, count) => draw(count));
    for (const name of ['createBuffer', 'createTexture', 'createShader', 'createProgram',
        'createVertexArray', 'bufferData', 'texImage2D']) {
        wrap(name, () => ++now.created);
    }

    watched.step = async (count, drawn, ms = 17) => {
        held = true;
        while (kept.length === 0) {
            await new Promise((done) => setTimeout(done));
        }
        const frames = [];
        drawing = drawn;
        while (frames.length < count && kept.length > 0) {
            frames.push(run(kept.shift(), clock + ms));
        }
        drawing = true;
        return frames;
    };

    watched.white = async (x, y, width, height) => {
        await watched.step(1, true);
        const pixels = new Uint8Array(4 * width * height);
        gl.readPixels(x, gl.drawingBufferHeight - y - height, width, height, gl.RGBA,
            gl.UNSIGNED_BYTE, pixels);
        const columns = [];
        for (let i = 0; i < pixels.length; i += 4) {
            if (pixels[i] + pixels[i + 1] + pixels[i + 2] === 3 * 255) {
                columns.push(i / 4 % width);
            }
        }
        return columns;
    };
    window.watched = watched;
}
