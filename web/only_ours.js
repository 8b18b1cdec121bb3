// Takes the linker's own OpenGL out of reach: what this folder lacks does not link, instead of
// doing something else. The WebGL functions keep their names with "emscripten_" in front.
for (const name of Object.keys(LibraryManager.library)) {
    if (/^gl[A-Z]/.test(name)) {
        delete LibraryManager.library[name];
    }
}
