// What touch and gamepads give the game: events as a keyboard and a mouse send them. A key is named
// by its place on a keyboard for English.
'use strict';
/* exported tap, look */

function key(type, code) {
    document.getElementById('canvas').dispatchEvent(
        new KeyboardEvent(type, {key: 'Unidentified', code}));
}

function tap(code) {
    key('keydown', code);
    key('keyup', code);
}

function mouse(type, how) {
    document.getElementById('canvas').dispatchEvent(
        new MouseEvent(type, {bubbles: true, ...how}));
}

// Moves a pointer of its own by pixels of the page; where it was left may be far from the mouse.
const pointer = {clientX: innerWidth / 2, clientY: innerHeight / 2};
function look(x, y) {
    mouse('mousemove', pointer);
    pointer.clientX += x;
    pointer.clientY += y;
    mouse('mousemove', pointer);
}
