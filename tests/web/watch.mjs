// Runs in the page, before anything of it: looks at the game from outside, through the WebGL
// calls and the frames that it asks for. `watched` there has what the last frame took.
export function watch() {
    const all = {frames: 0, calls: 0, vertices: 0, created: 0, ms: 0, skip: false};
    const frame = {calls: 0, vertices: 0, created: 0};
    const waiting = [];
    let gl;

    const types = WebGL2RenderingContext.prototype;
    const wrap = (name, note) => {
        const real = types[name];
        types[name] = function(...words) {
            gl = this;
            note(words);
            return all.skip && name.startsWith('draw') ? undefined : real.apply(this, words);
        };
    };
    const draw = (count) => {
        frame.calls++;
        frame.vertices += count;
    };
    wrap('drawArrays', ([, , count]) => draw(count));
    wrap('drawElements', ([, count]) => draw(count));
    for (const name of ['createBuffer', 'createTexture', 'createProgram', 'createVertexArray',
        'bufferData', 'texImage2D']) {
        wrap(name, () => frame.created++);
    }

    const real = window.requestAnimationFrame;
    window.requestAnimationFrame = (callback) => real.call(window, (time) => {
        Object.assign(frame, {calls: 0, vertices: 0, created: 0});
        const start = performance.now();
        callback(time);
        if (frame.calls > 0) {
            Object.assign(all, frame, {ms: performance.now() - start});
            all.frames++;
            all.first ??= performance.now();
            waiting.splice(0).forEach((look) => look());
        }
    });

    // After the next frame that was drawn, calls `look`, and resolves to what it gives.
    const after = (look) => new Promise((done) => waiting.push(() => done(look())));
    all.frame = () => after(() => ({...all}));

    // The pixels of pure white in a part of the picture, by their columns; y from above.
    all.white = (x, y, width, height) => after(() => {
        const pixels = new Uint8Array(4 * width * height);
        gl.readPixels(x, gl.drawingBufferHeight - y - height, width, height, gl.RGBA,
            gl.UNSIGNED_BYTE, pixels);
        const columns = [];
        for (let i = 0; i < pixels.length; i += 4) {
            if (pixels[i] + pixels[i + 1] + pixels[i + 2] === 765) {
                columns.push(i / 4 % width);
            }
        }
        return columns;
    });
    window.watched = all;
}
