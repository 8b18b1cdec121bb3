// Keeps a version of the site as a whole: what was loaded once plays without a network.
'use strict';

const VERSION = 'talvery @index@';
const FILES = '@kept@'.split(' ');

// Before this version takes over, all of it is here. A name holds its content's hash: what the page
// or an older version has kept is not fetched again, nor what had come when an update broke off.
async function install() {
    const cache = await caches.open(VERSION);
    const keep = async (path, source = path) => {
        let answer = await caches.match(source) ?? await fetch(source, {cache: 'force-cache'});
        if (!answer.ok) {
            answer = await fetch(source, {cache: 'reload'});  // it may be a kept answer, too
        }
        if (!answer.ok) {
            throw new Error(`${source}: the server answers ${answer.status}`);
        }
        await cache.put(path, answer);
    };
    await Promise.all([keep('./', '@index@'), ...FILES.map((path) => keep(path))]);
}

async function removeOthers() {
    const others = (await caches.keys()).filter((name) =>
        name.startsWith('talvery ') && name !== VERSION);
    await Promise.all(others.map((name) => caches.delete(name)));
}

// The page itself comes from the server where that answers, so it is never an old one; what it names,
// from what is kept.
async function answer(request) {
    const {pathname} = new URL(request.url);
    const isPage = [self.registration.scope, `${self.registration.scope}index.html`]
        .some((url) => new URL(url).pathname === pathname);
    if (isPage) {
        const page = await fetch(request).catch(() => undefined);
        return page?.ok ? page : await caches.match('./') ?? page ?? Response.error();
    }
    // A page that found a file damaged asks for it anew.
    const kept = request.cache === 'reload' ? undefined : await caches.match(request);
    return kept ?? fetch(request);
}

self.addEventListener('install', (event) => event.waitUntil(install()));
self.addEventListener('activate', (event) => event.waitUntil(removeOthers()));
self.addEventListener('fetch', (event) => {
    if (event.request.method === 'GET') {
        event.respondWith(answer(event.request));
    }
});
