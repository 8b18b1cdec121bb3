// Names what in style sheets does not parse, and properties that do not exist. Values are not
// looked at: the packaged library does not know all of today's.
//
// Usage: NODE_PATH=/usr/share/nodejs node lint_css.js FILE...
'use strict';

const {readFileSync} = require('node:fs');
const {lexer, parse, walk} = require('css-tree');

for (const file of process.argv.slice(2)) {
    const complain = (line, {message}) => {
        console.log(`${file}:${line}: ${message}`);
        process.exitCode = 1;
    };
    const sheet = parse(readFileSync(file, 'utf8'), {
        positions: true,
        onParseError: (error) => complain(error.line, error),
    });
    walk(sheet, {visit: 'Declaration', enter({property, loc}) {
        const error = property.startsWith('--') ? null : lexer.checkPropertyName(property);
        if (error) {
            complain(loc.start.line, error);
        }
    }});
}
