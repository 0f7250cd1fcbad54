// Turns DWG drawings into DXF text, one after the other, for the program that started it.
//
// Request on standard input:   "<length>\n" and the bytes of the DWG file.
// Answer on standard output:   "<status> <length>\n" and as many bytes: DXF text after "ok", else one clause.
// Status: ok; damaged (the drawing cannot be read); missing (the package is not installed). Ends with its input.
//
// Texts already made are kept in the folder of TOLMEX_DWG_CACHE (or the user's cache folder), named by the hash of the
// drawing and of this reader, 256 MB at most; the longest unused go first.
import { createHash } from 'node:crypto';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const here = path.dirname(fileURLToPath(import.meta.url));
const packageFolder = path.join(here, 'node_modules', '@mlightcad', 'libredwg-web');
const cacheFolder = process.env.TOLMEX_DWG_CACHE
  || path.join(process.env.XDG_CACHE_HOME || path.join(os.homedir(), '.cache'), 'tolmex', 'dwg');
const cacheLimit = 256 * 1024 * 1024;
const critical = 128;  // the package's error bits from here on mean that the drawing could not be read
const layerType = 51;   // of the objects that are layers

let pending = Buffer.alloc(0);

/** At least `size` bytes of input gathered in `pending`; false at its end. */
function gather(size) {
  const parts = [pending];
  let have = pending.length;
  while (have < size) {
    const part = Buffer.allocUnsafe(Math.max(65536, Math.min(size - have, 1 << 24)));
    const count = fs.readSync(0, part, 0, part.length, null);
    if (count === 0) return false;
    parts.push(part.subarray(0, count));
    have += count;
  }
  pending = parts.length === 1 ? pending : Buffer.concat(parts);
  return true;
}

function nextRequest() {
  let end = pending.indexOf(10);
  while (end < 0) {
    if (!gather(pending.length + 1)) return null;
    end = pending.indexOf(10);
  }
  const length = Number(pending.subarray(0, end).toString('latin1'));
  pending = pending.subarray(end + 1);
  if (!Number.isSafeInteger(length) || length < 0 || !gather(length)) return null;
  const bytes = pending.subarray(0, length);
  pending = Buffer.from(pending.subarray(length));
  return bytes;
}

function answer(status, content) {
  const body = Buffer.from(content);
  const all = Buffer.concat([Buffer.from(`${status} ${body.length}\n`, 'latin1'), body]);
  for (let at = 0; at < all.length;) at += fs.writeSync(1, all, at);
}

/** The package and its code; instances of it are made per drawing. */
let loaded = null;
async function load() {
  if (loaded !== null) return;
  const { default: createModule } = await import(pathToFileURL(path.join(packageFolder, 'wasm', 'libredwg-web.js')));
  const code = fs.readFileSync(path.join(packageFolder, 'wasm', 'libredwg-web.wasm'));
  loaded = { createModule, code };
}

/**
 * A fresh instance: in memory that was used before, the package shows ends of old texts behind new ones; and after a
 * crash nothing in it can be trusted.
 */
function newInstance() {
  return loaded.createModule({ wasmBinary: loaded.code, print: () => {}, printErr: () => {} });
}

/** How many objects the drawing has, and the handles of the layers that are off. */
function survey(module) {
  const { data } = module.dwg_read_file('/in.dwg');
  const layersOff = new Set();
  let objects = 0;
  if (!data) return { objects, layersOff };
  objects = module.dwg_get_num_objects(data);
  for (let i = 0; i < objects; ++i) {
    const object = module.dwg_get_object(data, i);
    if (!object || module.dwg_object_get_fixedtype(object) !== layerType) continue;
    const layer = module.dwg_object_to_object_tio(object);
    if (!module.dwg_dynapi_entity_value(layer, 'off').data) continue;
    layersOff.add(BigInt(module.dwg_object_get_handle_object(object).value).toString(16).toUpperCase());
  }
  return { objects, layersOff };
}

/** Objects with a handle in the text. Table heads and a few others have none, so it is some ten below the survey's. */
function written(text) {
  return (text.match(/\r\n  0\r\n(?:[A-Z_0-9]+\r\n  5|DIMSTYLE\r\n105)\r\n/g) || []).length;
}

/** The package writes every layer as switched off: a negative colour number. */
function withLayersOn(text, layersOff) {
  const start = text.indexOf('\r\n  2\r\nTABLES\r\n');
  const end = text.indexOf('\r\n  0\r\nENDSEC\r\n', start);
  if (start < 0 || end < 0) return text;
  const record = /(\r\n  0\r\nLAYER\r\n  5\r\n([0-9A-F]+)\r\n(?:(?!  0\r\n).*\r\n.*\r\n)*? 62\r\n *)-?(\d+)/g;
  const tables = text.slice(start, end)
    .replace(record, (_, head, handle, color) => head + (layersOff.has(handle) ? '-' : '') + color);
  return text.slice(0, start) + tables + text.slice(end);
}

async function convert(bytes) {
  try {
    await load();
  } catch (error) {
    return ['missing', String(error.message).split('\n')[0]];
  }
  try {
    const module = await newInstance();
    module.FS.writeFile('/in.dwg', bytes);
    const error = module.dwg_write_dxf('/in.dwg', '/out.dxf');
    if (error >= critical) return ['damaged', `error ${error}`];
    const text = Buffer.from(module.FS.readFile('/out.dxf')).toString('latin1');
    const { objects, layersOff } = survey(module);
    const isWhole = text.trimEnd().endsWith('EOF') && written(text) >= objects * 0.8 - 20;
    if (!isWhole) return ['damaged', 'only a part could be read'];
    return ['ok', Buffer.from(withLayersOn(text, layersOff), 'latin1')];
  } catch (error) {
    return ['damaged', error instanceof WebAssembly.RuntimeError ? 'the reader crashed' : 'nothing came out'];
  }
}

/** What makes texts of this reader differ from those of another. */
function readerMark() {
  const mark = createHash('sha256').update(fs.readFileSync(fileURLToPath(import.meta.url)));
  try {
    mark.update(fs.readFileSync(path.join(packageFolder, 'package.json')));
  } catch {
    // Not installed: every drawing that is not kept yet is answered so.
  }
  return mark.digest();
}
const mark = readerMark();

function cachedPath(bytes) {
  return path.join(cacheFolder, `${createHash('sha256').update(mark).update(bytes).digest('hex')}.dxf`);
}

function fromCache(file) {
  try {
    const text = fs.readFileSync(file);
    const now = new Date();
    fs.utimesSync(file, now, now);
    return text;
  } catch {
    return null;
  }
}

/** Failing to keep a text costs time next time, nothing else. */
function keep(file, text) {
  try {
    fs.mkdirSync(cacheFolder, { recursive: true, mode: 0o700 });
    const temporary = `${file}.${process.pid}`;
    fs.writeFileSync(temporary, text);
    fs.renameSync(temporary, file);
    const files = fs.readdirSync(cacheFolder).map((name) => {
      const full = path.join(cacheFolder, name);
      const { size, mtimeMs } = fs.statSync(full);
      return { full, size, mtimeMs };
    });
    files.sort((a, b) => b.mtimeMs - a.mtimeMs);
    let total = 0;
    for (const { full, size } of files) {
      total += size;
      if (total > cacheLimit) fs.unlinkSync(full);
    }
  } catch {
    // Another process may be at the same file, the disk may be full.
  }
}

for (let bytes = nextRequest(); bytes !== null; bytes = nextRequest()) {
  const file = cachedPath(bytes);
  const known = fromCache(file);
  if (known !== null) {
    answer('ok', known);
    continue;
  }
  const [status, content] = await convert(bytes);
  answer(status, content);
  if (status === 'ok') keep(file, content);
}
