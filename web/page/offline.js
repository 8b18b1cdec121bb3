// Has the browser keep the game, so that it plays without a network, and offers to install it.
'use strict';
/* exported keepGame */

// Once the game is here: the rest is fetched, and all is kept. A browser that keeps nothing, or a
// page that came over an open connection, goes without.
function keepGame() {
    navigator.serviceWorker?.register('service_worker.js').catch(console.warn);
}

// The offer is made in one visit only.
window.addEventListener('beforeinstallprompt', (offer) => {
    const button = document.getElementById('install');
    offer.preventDefault();
    button.hidden = localStorage.getItem('install') !== null;
    localStorage.setItem('install', 'offered');
    button.onclick = () => {
        button.hidden = true;
        offer.prompt();
    };
});
