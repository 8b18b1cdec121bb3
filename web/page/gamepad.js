// Plays with a gamepad of the standard mapping.
'use strict';
/* global key, tap, mouse, look */

window.followGamepads = () => {

const PUSHED = 0.5;      // of a stick's way, or a trigger's
const DEAD_ZONE = 0.15;  // of the right stick
const LOOK = 1;          // pixels in a frame, at the stick's end
const VIEWS = ['Digit1', 'Digit2', 'Digit3'];

// What a push does; where it returns something, that is called when the push ends.
const once = (code) => () => tap(code);
const hold = (code) => () => {
    key('keydown', code);
    return () => key('keyup', code);
};
const zoom = (button) => () => {
    mouse('mousedown', {button});
    return () => mouse('mouseup', {button});
};
let view = 1;
const nextView = () => {
    view = (view + 1) % VIEWS.length;
    tap(VIEWS[view]);
};

const ANYWHERE = {b: once('Escape'), y: nextView, rightTrigger: zoom(0), leftTrigger: zoom(2)};
const ACTIONS = {
    title: {a: once('KeyP'), left: once('KeyM'), right: once('KeyN')},
    town: {...ANYWHERE, up: hold('KeyW'), down: hold('KeyS'), left: hold('KeyA'),
        right: hold('KeyD'), leftShoulder: hold('Comma'), rightShoulder: hold('Period')},
    battle: {...ANYWHERE, up: once('KeyW'), down: once('KeyS'), a: once('Enter')},
};

function pushedOn({axes, buttons}) {
    const is = (number) => buttons[number]?.value > PUSHED;
    const all = {
        a: is(0), b: is(1), y: is(3), leftShoulder: is(4), rightShoulder: is(5),
        leftTrigger: is(6), rightTrigger: is(7),
        up: is(12) || axes[1] < -PUSHED, down: is(13) || axes[1] > PUSHED,
        left: is(14) || axes[0] < -PUSHED, right: is(15) || axes[0] > PUSHED,
    };
    return Object.keys(all).filter((name) => all[name]);
}

const ends = new Map();  // of the pushes that last

function poll() {
    const pad = navigator.getGamepads().find((one) => one?.mapping === 'standard');
    document.getElementById('gamepad').hidden = !pad;
    const pushed = pad ? pushedOn(pad) : [];
    for (const [name, end] of ends) {
        if (!pushed.includes(name)) {
            ends.delete(name);
            end?.();
        }
    }
    for (const name of pushed.filter((one) => !ends.has(one))) {
        ends.set(name, ACTIONS[document.body.dataset.scene]?.[name]?.());
    }
    const [x, y] = [2, 3].map((axis) => pad?.axes[axis] ?? 0)
        .map((way) => Math.abs(way) > DEAD_ZONE ? LOOK * way : 0);
    if (x !== 0 || y !== 0) {
        look(x, y);
    }
    polling = Boolean(pad);
    polling && requestAnimationFrame(poll);
}

let polling = false;
window.addEventListener('gamepadconnected', () => polling || poll());

};
