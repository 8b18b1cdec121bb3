// Buttons for thumbs, and what fingers do on the picture.
'use strict';
/* global key, tap, mouse, look */

window.followFingers = () => {

const LOOK = 0.2;        // of a finger's way is the pointer's, which turns the view quickly
const PINCH_MS = 120;    // from the fingers' last move until the zoom ends
const PINCH_PIXELS = 2;  // that their distance changes by, at the least
const DEAD_ZONE = 0.2;   // of the pad, round its middle
const SIDEWAYS = 0.41;   // tan 22.5 degrees: the pad has eight directions

const canvas = document.getElementById('canvas');
const pad = document.getElementById('pad');

// Presses the keys of `next` that are not among `last`, and lets go of those that are no more.
function change(last, next) {
    last.filter((code) => !next.includes(code)).forEach((code) => key('keyup', code));
    next.filter((code) => !last.includes(code)).forEach((code) => key('keydown', code));
    return next;
}

// What a place on the pad means: one key, or two between them.
function keysAt({clientX, clientY}) {
    const {left, top, width, height} = pad.getBoundingClientRect();
    const x = (clientX - left) / width * 2 - 1;
    const y = (clientY - top) / height * 2 - 1;
    if (Math.hypot(x, y) < DEAD_ZONE) {
        return [];
    }
    return [...Math.abs(y) > SIDEWAYS * Math.abs(x) ? [y < 0 ? 'KeyW' : 'KeyS'] : [],
        ...Math.abs(x) > SIDEWAYS * Math.abs(y) ? [x < 0 ? 'KeyA' : 'KeyD'] : []];
}

// Calls `press` with each event of a finger on the element, and `release` when it is gone.
function follow(element, press, release) {
    element.addEventListener('pointerdown', (event) => {
        event.preventDefault();  // the canvas keeps the focus
        element.setPointerCapture(event.pointerId);
        press(event);
    });
    element.addEventListener('pointermove', (event) =>
        element.hasPointerCapture(event.pointerId) && press(event));
    element.addEventListener('lostpointercapture', release);
}

let walking = [];
follow(pad, (event) => { walking = change(walking, keysAt(event)); },
    () => { walking = change(walking, []); });

for (const button of document.querySelectorAll('#touch button')) {
    const {code} = button.dataset;
    if ('held' in button.dataset) {
        follow(button, (event) => event.type === 'pointerdown' && key('keydown', code),
            () => key('keyup', code));
    } else if (button.parentElement !== pad) {
        follow(button, (event) => event.type === 'pointerdown' && tap(code), () => {});
    }
    // Without a finger: by a screen reader, or by its own key.
    button.addEventListener('click', ({detail}) => detail === 0 && tap(code));
}

// --- On the picture ----------------------------------------------------------------

const fingers = new Map();  // places, by the pointer's number
let apart = 0;        // two fingers' distance, pixels
let zoom = undefined; // the mouse's button that is held
let zoomEnd = 0;

function setZoom(button) {
    if (zoom !== button) {
        zoom === undefined || mouse('mouseup', {button: zoom});
        button === undefined || mouse('mousedown', {button});
        zoom = button;
    }
}

function distance() {
    const [one, other] = fingers.values();
    return Math.hypot(one.x - other.x, one.y - other.y);
}

canvas.addEventListener('pointerdown', ({pointerId, pointerType, clientX, clientY}) => {
    if (pointerType === 'touch') {
        fingers.set(pointerId, {x: clientX, y: clientY});
        apart = fingers.size === 2 ? distance() : 0;
    }
});
canvas.addEventListener('pointermove', ({pointerId, clientX, clientY}) => {
    const finger = fingers.get(pointerId);
    if (!finger) {
        return;
    }
    const moved = {x: clientX - finger.x, y: clientY - finger.y};
    Object.assign(finger, {x: clientX, y: clientY});
    if (fingers.size === 1) {
        look(LOOK * moved.x, LOOK * moved.y);
    } else if (fingers.size === 2 && Math.abs(distance() - apart) >= PINCH_PIXELS) {
        setZoom(distance() > apart ? 0 : 2);
        apart = distance();
        clearTimeout(zoomEnd);
        zoomEnd = setTimeout(setZoom, PINCH_MS);
    }
});
for (const type of ['pointerup', 'pointercancel']) {
    canvas.addEventListener(type, ({pointerId}) => {
        fingers.delete(pointerId);
        setZoom(undefined);
    });
}
// The browser would make mouse events of its own of a touch.
canvas.addEventListener('touchstart', (event) => event.preventDefault(), {passive: false});

// --- When the buttons are there ----------------------------------------------------

const show = (shown) => document.body.classList.toggle('touch', shown);
show(matchMedia('(pointer: coarse)').matches);
window.addEventListener('keydown', ({isTrusted}) => isTrusted && show(false));
window.addEventListener('pointerdown', ({pointerType}) => pointerType === 'touch' && show(true));

};
