// Keeps whole versions of the site: what was loaded once plays without a network.
'use strict';

const VERSION = 'talvery @index@';
const FILES = '@kept@'.split(' ');

// A version is there as a whole when its page is, so that comes last. A name holds its content's
// hash: what the page or an older version has kept is not fetched again, nor what had come when an
// update broke off.
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
    await Promise.all(FILES.map((path) => keep(path)));
    await keep('./', '@index@');
}

async function versions() {
    return (await caches.keys()).filter((name) => name.startsWith('talvery '));
}

// When this version's worker takes over, no page of another one is open.
async function removeOthers() {
    const others = (await versions()).filter((name) => name !== VERSION);
    await Promise.all(others.map((name) => caches.delete(name)));
}

// The page of the newest version that is there as a whole; this one's or that of the worker which
// waits until no page is open any more.
async function keptPage() {
    const pages = (await versions()).map((cacheName) => caches.match('./', {cacheName}));
    return (await Promise.all(pages)).findLast(Boolean);
}

// What the page names comes from what is kept, and so does the page, until it is loaded anew: it does
// that by itself where a file is missing or damaged.
async function answer(request) {
    const {pathname} = new URL(request.url);
    const isPage = [self.registration.scope, `${self.registration.scope}index.html`]
        .some((url) => new URL(url).pathname === pathname);
    const find = () => isPage ? keptPage() : caches.match(request);
    if (['reload', 'no-cache'].includes(request.cache)) {
        const answered = await fetch(request).catch(() => undefined);
        return answered?.ok ? answered : await find() ?? answered ?? Response.error();
    }
    return await find() ?? fetch(request);
}

self.addEventListener('install', (event) => event.waitUntil(install()));
self.addEventListener('activate', (event) => event.waitUntil(removeOthers()));
self.addEventListener('fetch', (event) => event.respondWith(answer(event.request)));
