// The game's pictures, which travel as WebP: the browser unpacks them, and the game gets the BMP
// files that it reads.
'use strict';
/* exported unpackPicture */

const BMP_HEADER = 54;  // bytes before the pixels

// A BMP file of 24 bits a pixel: rows from below, blue before green and red. The game's widths are
// multiples of 4, so no row is padded.
function bmpOf({width, height, data}) {
    const file = new Uint8Array(BMP_HEADER + 3 * width * height);
    const planesAndBits = 1 | 24 << 16;
    file.set([0x42, 0x4d]);  // "BM", and then numbers of 32 bits
    file.set(new Uint8Array(Int32Array.of(file.length, 0, BMP_HEADER, 40, width, height,
        planesAndBits, 0, 0, 0, 0, 0, 0).buffer), 2);
    let to = BMP_HEADER;
    for (let y = height - 1; y >= 0; --y) {
        for (let from = 4 * width * y; from < 4 * width * (y + 1); from += 4) {
            file[to++] = data[from + 2];
            file[to++] = data[from + 1];
            file[to++] = data[from];
        }
    }
    return file;
}

// Adler-32, as in RFC 1950.
function sumOf(bytes) {
    const BASE = 65521;
    const BLOCK = 3800;  // bytes that may be added up before the remainder is taken
    let [a, b] = [1, 0];
    for (let i = 0; i < bytes.length;) {
        for (const end = Math.min(i + BLOCK, bytes.length); i < end; ++i) {
            a += bytes[i];
            b += a;
        }
        a %= BASE;
        b %= BASE;
    }
    return b * 65536 + a;
}

// Resolves to the BMP file of a picture, or to nothing where its pixels have not this sum: some
// browsers falsify what a page reads from a canvas, so that nobody is told by how they draw.
// One picture at a time: unpacked, they take a lot of memory.
let lastPicture = Promise.resolve();
function unpackPicture(webp, sum) {
    const unpacked = lastPicture.then(() => unpackNow(webp, sum));
    lastPicture = unpacked.catch(() => {});
    return unpacked;
}

async function unpackNow(webp, sum) {
    const image = await createImageBitmap(new Blob([webp], {type: 'image/webp'}),
        {colorSpaceConversion: 'none', premultiplyAlpha: 'none'});
    const canvas = document.createElement('canvas');
    canvas.width = image.width;
    canvas.height = image.height;
    const context = canvas.getContext('2d', {alpha: false, willReadFrequently: true});
    context.drawImage(image, 0, 0);
    const file = bmpOf(context.getImageData(0, 0, image.width, image.height));
    image.close();
    canvas.width = 0;
    return sumOf(file.subarray(BMP_HEADER)) === sum ? file : undefined;
}
