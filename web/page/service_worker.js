// Keeps whole versions of the site: what was loaded once plays without a network.
'use strict';

const VERSION = `${self.registration.scope} @index@`;
const FILES = '@kept@'.split(' ');

// A name holds its content's hash, the first digits of SHA-256; but some servers add to a page.
async function isWhole(name, answer) {
    const hash = new DataView(await crypto.subtle.digest('SHA-256', await answer.arrayBuffer()));
    const digits = hash.getBigUint64(0).toString(16).padStart(16, '0').slice(0, 12);
    return name.endsWith('.html') || name.includes(`.${digits}.`);
}

// A version is there as a whole when its page is, so that comes last. What the page or an older
// version has kept is not fetched again, nor what had come when an update broke off; if it is right.
async function install() {
    const cache = await caches.open(VERSION);
    const keep = async (path, source = path) => {
        for (const find of [() => caches.match(source), ...['force-cache', 'reload'].map((how) =>
            () => fetch(source, {cache: how}))]) {
            const answer = await find();
            if (answer?.ok && await isWhole(source, answer.clone())) {
                return cache.put(path, new Response(answer.body, answer));  // not as redirected
            }
        }
        throw new Error(`${source} did not arrive as it is`);
    };
    await Promise.all(FILES.map((path) => keep(path)));
    await keep('./', '@index@');
}

async function versions() {
    return (await caches.keys()).filter((name) => name.startsWith(`${self.registration.scope} `));
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

// What the page names comes from what is kept, and so does the page, until it is loaded anew: it
// does that by itself where a file is missing or damaged.
async function answer(request) {
    const {pathname} = new URL(request.url);
    const isPage = [self.registration.scope, `${self.registration.scope}index.html`]
        .some((url) => new URL(url).pathname === pathname);
    const find = () => (isPage ? keptPage() : caches.match(request, {ignoreVary: true}))
        .catch(() => undefined);
    if (['reload', 'no-cache'].includes(request.cache)) {
        const answered = await fetch(request).catch(() => undefined);
        return answered?.ok ? answered : await find() ?? answered ?? Response.error();
    }
    const answered = await find() ?? await fetch(request);
    if (answered.ok && pathname.endsWith('.bmp')) {  // which only a browser that alters pictures needs
        await caches.open(VERSION).then((cache) => cache.put(request, answered.clone()))
            .catch(console.warn);
    }
    return answered;
}

self.addEventListener('install', (event) => event.waitUntil(install()));
self.addEventListener('activate', (event) => event.waitUntil(removeOthers()));
self.addEventListener('fetch', (event) => event.respondWith(answer(event.request)));
