// Runs in the page before its own scripts: sends the server each state of it, with what it says
// then, what the game prints, and what nobody caught.
'use strict';

(() => {

let sent = Promise.resolve();  // so that nothing overtakes what came before
function send(path, words) {
    sent = sent.then(() => fetch(path, {method: 'POST', body: words}));
}

for (const level of ['log', 'warn', 'error']) {
    const print = console[level];
    console[level] = (...words) => {
        print.apply(console, words);
        send('console', words.join(' '));
    };
}

window.addEventListener('error', ({message}) => send('console', `Error: ${message}`));
window.addEventListener('unhandledrejection', ({reason}) => send('console', `Error: ${reason}`));

document.addEventListener('DOMContentLoaded', () => {
    const tell = () =>
        send(document.body.dataset.state, document.getElementById('state').textContent);
    new MutationObserver(tell).observe(document.body, {attributeFilter: ['data-state']});
    tell();
});

})();
