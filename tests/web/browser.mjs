// A headless Chromium, driven over a pipe, and a server for the site. Nothing but Node's own.

import {spawn} from 'node:child_process';
import {createReadStream, existsSync, mkdtempSync, rmSync, statSync, writeFileSync} from 'node:fs';
import {createServer} from 'node:http';
import {tmpdir} from 'node:os';
import {extname, join, normalize} from 'node:path';

const FLAGS = ['--headless=new', '--no-sandbox', '--use-angle=swiftshader',
    '--enable-unsafe-swiftshader', '--disable-background-networking', '--disable-component-update',
    '--disable-sync', '--disable-dev-shm-usage', '--no-first-run', '--hide-scrollbars',
    '--remote-debugging-pipe'];
const SECONDS = 120;  // the longest that anything may take in a slow software drawing

// What a key event carries beside the letter itself.
const KEYS = {
    Escape: {code: 'Escape', windowsVirtualKeyCode: 27},
    Enter: {code: 'Enter', windowsVirtualKeyCode: 13, text: '\r'},
    ' ': {code: 'Space', windowsVirtualKeyCode: 32, text: ' '},
    ',': {code: 'Comma', windowsVirtualKeyCode: 188, text: ','},
};

export const sleep = (seconds) => new Promise((done) => setTimeout(done, 1000 * seconds));

// Waits until `condition` gives something that is true, and returns it.
export async function until(what, condition, seconds = SECONDS) {
    for (const deadline = Date.now() + 1000 * seconds; ;) {
        const value = await condition();
        if (value) {
            return value;
        }
        if (Date.now() > deadline) {
            throw new Error(`waited in vain for ${what}`);
        }
        await sleep(0.05);
    }
}

export class Browser {
    constructor(...flags) {
        this.profile = mkdtempSync(join(tmpdir(), 'talvery-browser-'));
        this.process = spawn('chromium', [...FLAGS, ...flags, `--user-data-dir=${this.profile}`],
            {stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe']});
        this.ended = new Promise((done) => this.process.on('close', done));
        this.answers = new Map();
        this.pages = new Map();
        this.last = 0;
        let rest = '';
        this.process.stdio[4].setEncoding('utf8').on('data', (text) => {
            const messages = (rest + text).split('\0');
            rest = messages.pop();
            messages.forEach((message) => this.take(JSON.parse(message)));
        });
        process.on('exit', () => {
            this.process.kill('SIGKILL');  // where a test ends early
            rmSync(this.profile, {recursive: true, force: true, maxRetries: 5, retryDelay: 200});
        });
        this.ended.then(() => this.answers.forEach(({failed}) => failed(new Error('no browser'))));
    }

    take({id, result, error, method, params, sessionId}) {
        if (id) {
            const {done, failed} = this.answers.get(id);
            this.answers.delete(id);
            error ? failed(new Error(error.message)) : done(result);
        } else {
            this.pages.get(sessionId)?.take(method, params);
        }
    }

    send(method, params = {}, sessionId = undefined) {
        const id = ++this.last;
        this.process.stdio[3].write(JSON.stringify({id, method, params, sessionId}) + '\0');
        return new Promise((done, failed) => this.answers.set(id, {done, failed}));
    }

    // An empty page of this size, in CSS pixels.
    async page(width = 1280, height = 1024, options = {}) {
        const {targetId} = await this.send('Target.createTarget', {url: 'about:blank'});
        const {sessionId} =
            await this.send('Target.attachToTarget', {targetId, flatten: true});
        const page = new Page(this, targetId, sessionId);
        this.pages.set(sessionId, page);
        for (const domain of ['Page', 'Runtime', 'Log', 'Network']) {
            await page.send(`${domain}.enable`);
        }
        await page.resize(width, height, options);
        return page;
    }

    async close() {
        await this.send('Browser.close').catch(() => {});
        await this.ended;
    }
}

class Page {
    constructor(browser, target, session) {
        this.browser = browser;
        this.target = target;
        this.session = session;
        this.console = [];  // what was printed, and what went wrong
    }

    take(method, params) {
        if (method === 'Runtime.consoleAPICalled') {
            this.console.push(params.args.map(({value, description}) => value ?? description)
                .join(' '));
        } else if (method === 'Runtime.exceptionThrown') {
            const {exception, text} = params.exceptionDetails;
            this.console.push(`exception: ${exception?.description ?? text}`);
        } else if (method === 'Page.loadEventFired') {
            this.loaded = true;
        }
    }

    send(method, params) {
        return this.browser.send(method, params, this.session);
    }

    close() {
        this.browser.pages.delete(this.session);
        return this.browser.send('Target.closeTarget', {targetId: this.target});
    }

    resize(width, height, {ratio = 1, mobile = false} = {}) {
        return this.send('Emulation.setDeviceMetricsOverride',
            {width, height, deviceScaleFactor: ratio, mobile});
    }

    // Runs a function there before anything of the page does.
    before(script, ...words) {
        return this.send('Page.addScriptToEvaluateOnNewDocument',
            {source: `(${script})(...${JSON.stringify(words)})`});
    }

    async open(url) {
        this.loaded = false;
        const {errorText} = await this.send('Page.navigate', {url});
        if (errorText) {
            throw new Error(`${url}: ${errorText}`);
        }
        await until('the page', () => this.loaded);
    }

    // Calls a function in the page, and returns what it gives, or what that promises.
    async call(script, ...words) {
        const {result, exceptionDetails} = await this.send('Runtime.evaluate', {
            expression: `(${script})(...${JSON.stringify(words)})`,
            awaitPromise: true, returnByValue: true, userGesture: true});
        if (exceptionDetails) {
            throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
        }
        return result.value;
    }

    until(what, script, ...words) {
        return until(what, () => this.call(script, ...words));
    }

    key(type, key, more = {}) {
        const letter = {code: `Key${key.toUpperCase()}`, text: key,
            windowsVirtualKeyCode: key.toUpperCase().charCodeAt(0)};
        const {text, ...rest} = KEYS[key] ?? letter;
        return this.send('Input.dispatchKeyEvent',
            {type, key, ...rest, ...(type === 'keyDown' ? {text} : {}), ...more});
    }

    // Short presses, each a key event of its own.
    async press(key, times = 1) {
        for (let i = 0; i < times; ++i) {
            await this.key('keyDown', key);
            await this.key('keyUp', key);
        }
    }

    async picture(file) {
        const {data} = await this.send('Page.captureScreenshot');
        writeFileSync(file, Buffer.from(data, 'base64'));
    }

    async heard(pattern) {
        return until(`${pattern} in the console`, () => this.console.find((line) =>
            pattern.test(line)));
    }
}

// Serves folders, one laid over the next, on a free port. `requests` lists what was asked for; a
// path for which `fault` returns a status gets that instead of the file, one for which it returns a
// word gets half of it.
export async function serve(...folders) {
    const types = {'.html': 'text/html', '.js': 'text/javascript', '.css': 'text/css',
        '.wasm': 'application/wasm', '.jpg': 'image/jpeg', '.png': 'image/png'};
    const server = createServer((request, answer) => {
        const path = normalize(decodeURIComponent(new URL(request.url, 'http://x').pathname));
        const file = folders.map((folder) =>
            join(folder, path.endsWith('/') ? `${path}index.html` : path)).find(existsSync);
        site.requests.push(path);
        const fault = site.fault(path) ?? (file ? undefined : 404);
        if (fault > 0) {
            answer.writeHead(fault).end();
            return;
        }
        const stat = statSync(file);
        const end = fault ? Math.floor(stat.size / 2) : stat.size;
        answer.writeHead(200, {'Content-Type': types[extname(file)] ?? 'application/octet-stream',
            'Content-Length': end, 'Last-Modified': stat.mtime.toUTCString()});
        createReadStream(file, {end: end - 1}).pipe(answer);
    });
    const site = {requests: [], fault: () => undefined, close: () => server.close()};
    await new Promise((done) => server.listen(0, '127.0.0.1', done));
    site.address = `http://127.0.0.1:${server.address().port}/`;
    return site;
}
