// Turns DWG drawings into DXF text, one after the other, for the program that started it.
//
// Request on standard input:   "<length>\n" and the bytes of the DWG file.
// Answer on standard output:   "<status> <length>\n" and as many bytes: DXF text after "ok", else one clause.
// Status: ok; damaged (the drawing cannot be read); missing (the package is not installed). Ends with its input.
//
// What the package does not write is told behind the end of the text (EOF), a line per class of objects:
// "left-out <count> <class>", or "pictured <count> <class>" for entities of which the graphics are kept.
//
// Texts already made are kept in the folder of TOLMEX_DWG_CACHE (or the user's cache folder), named by the hash of the
// drawing and of this reader, 256 MB at most; the longest unused go first. A kept text begins with a line that tells
// its drawing, length and hash and is taken only when all are right; a folder that others could write to is not used.
import { createHash, randomUUID } from 'node:crypto';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const here = path.dirname(fileURLToPath(import.meta.url));
const packageFolder = path.join(here, 'node_modules', '@mlightcad', 'libredwg-web');
const cacheLimit = 256 * 1024 * 1024;
const strayAge = 3600 * 1000;  // ms after which an unfinished file is nobody's any more
const ownName = /^[0-9a-f]{64}\.dxf(\.[0-9a-f-]+)?$/;  // of kept texts and, with a further ending, unfinished ones
const critical = 128;  // the package's error bits from here on mean that the drawing could not be read
const layerType = 51;   // of the objects that are layers
// Heads of tables, and what entities of viewports had of their own long ago: nothing in DXF stands for them.
const withoutRecord = new Set([48, 50, 52, 56, 60, 62, 64, 66, 68, 70, 71]);
const unknownEntity = 65534, unknownObject = 65535;  // types of objects whose class the package does not know
const longestGraphics = 1 << 24;  // bytes of one entity

const hex = (handle) => handle.toString(16).toUpperCase();

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

/** Handles of the objects with a record in the text, as the text spells them. */
function written(text) {
  const handles = new Set();
  const record = /\r\n  0\r\n(?:[A-Z_0-9]+\r\n  5|DIMSTYLE\r\n105)\r\n([0-9A-F]+)(?=\r\n)/g;
  for (const [, handle] of text.matchAll(record)) handles.add(handle);
  return handles;
}

function handleOf(module, object) {
  return hex(BigInt(module.dwg_object_get_handle_object(object).value));
}

/** How many objects the drawing has, those of them that the text lacks, and the handles of the layers that are off. */
function survey(module, inText) {
  const { data } = module.dwg_read_file('/in.dwg');
  const layersOff = new Set();
  const missing = [];
  let objects = 0;
  if (!data) return { objects, missing, layersOff };
  objects = module.dwg_get_num_objects(data);
  for (let i = 0; i < objects; ++i) {
    const object = module.dwg_get_object(data, i);
    if (!object) continue;
    const type = module.dwg_object_get_fixedtype(object);
    const handle = handleOf(module, object);
    if (!inText.has(handle) && !withoutRecord.has(type)) missing.push({ object, type, handle });
    if (type !== layerType) continue;
    if (module.dwg_dynapi_entity_value(module.dwg_object_to_object_tio(object), 'off').data) layersOff.add(handle);
  }
  return { objects, missing, layersOff };
}

/** What an entity looked like to the program that saved it, as hexadecimal digits; null when it left nothing. */
function graphicsOf(module, object) {
  if (module.dwg_object_get_supertype(object) !== 0) return null;
  const { data } = module.dwg_entity_get_preview(object);
  if (!data || data.length <= 8 || data.length > longestGraphics) return null;
  return Buffer.from(data).toString('hex').toUpperCase();
}

/** Texts of records by place in the text, put in there. */
function withInsertions(text, insertions) {
  const parts = [];
  let from = 0;
  for (const [at, records] of [...insertions].sort(([a], [b]) => a - b)) {
    parts.push(text.slice(from, at), ...records);
    from = at;
  }
  parts.push(text.slice(from));
  return parts.join('');
}

/** Names of the records of a table that match, by handle. */
function namesOf(text, type, name) {
  const names = new Map();
  const record = new RegExp(
    `\\r\\n  0\\r\\n${type}\\r\\n  5\\r\\n([0-9A-F]+)\\r\\n(?:(?!  [02]\\r\\n).*\\r\\n.*\\r\\n)*?  2\\r\\n(${name})\\r\\n`, 'gi');
  for (const [, handle, found] of text.matchAll(record)) names.set(handle, found);
  return names;
}

/** Where in the text the entities of blocks and spaces end. */
class EntityEnds {
  constructor(text) {
    this.text = text;
    this.known = new Map();
    this.spaces = new Map();
    for (const [handle, name] of namesOf(text, 'BLOCK_RECORD', '\\*(?:model|paper)_space')) {
      this.spaces.set(name.toUpperCase(), handle);
      this.known.set(handle, text.indexOf('\r\n  0\r\nENDSEC\r\n', text.indexOf('\r\n  2\r\nENTITIES\r\n')));
    }
  }

  /** -1 for a block that the text lacks. */
  of(owner) {
    if (!this.known.has(owner)) {
      const head = new RegExp(`\\r\\n  0\\r\\nBLOCK\\r\\n  5\\r\\n[0-9A-F]+\\r\\n330\\r\\n${owner}\\r\\n`);
      const block = this.text.search(head);
      this.known.set(owner, block < 0 ? -1 : this.text.indexOf('\r\n  0\r\nENDBLK\r\n', block));
    }
    return this.known.get(owner);
  }
}

/** Puts entities of which the package gives the graphics only into the text, as proxies. Answers which these are. */
function picture(module, text, missing) {
  const ends = new EntityEnds(text);
  const layers = namesOf(text, 'LAYER', '.*');
  const insertions = new Map(), pictured = new Set();
  for (const { object, handle } of missing) {
    const graphics = graphicsOf(module, object);
    if (graphics === null) continue;
    const entity = module.dwg_object_to_entity(object);
    const value = (field) => module.dwg_dynapi_common_value(module.dwg_object_to_entity_tio(object), field).data;
    const space = { 1: '*PAPER_SPACE', 2: '*MODEL_SPACE' }[value('entmode')];
    const owner = space ? ends.spaces.get(space)
      : hex(module.dwg_object_entity_get_ownerhandle_object(entity).absolute_ref);
    const at = owner ? ends.of(owner) : -1;
    if (at < 0) continue;
    const groups = ['  0', 'ACAD_PROXY_ENTITY', '  5', handle, '330', owner, '100', 'AcDbEntity'];
    if (owner === ends.spaces.get('*PAPER_SPACE')) groups.push(' 67', '     1');
    groups.push('  8', layers.get(hex(module.dwg_object_entity_get_layer_object_ref(entity).absolute_ref)) || '0');
    const color = value('color')?.index;
    if (color >= 0 && color < 256) groups.push(' 62', String(color));
    if (value('invisible') === 1) groups.push(' 60', '     1');
    groups.push(' 92', String(graphics.length / 2));
    for (let i = 0; i < graphics.length; i += 254) groups.push('310', graphics.slice(i, i + 254));
    groups.push('100', 'AcDbProxyEntity', ' 90', '498', ' 91', String(module.dwg_object_get_type(object)),
      ' 93', '0', ' 94', '0', ' 95', '0', ' 70', '     0');
    if (!insertions.has(at)) insertions.set(at, []);
    insertions.get(at).push('\r\n' + groups.join('\r\n'));
    pictured.add(object);
  }
  return { text: withInsertions(text, insertions), pictured };
}

/** The lines that tell of objects without a record of their own kind. */
function told(module, missing, pictured) {
  const counts = new Map();
  for (const { object } of missing) {
    const name = String(module.dwg_object_get_dxfname(object) || 'object').replace(/[^\x20-\x7e]/g, '?').slice(0, 80);
    const line = (pictured.has(object) ? 'pictured ' : 'left-out ') + name;
    counts.set(line, (counts.get(line) || 0) + 1);
  }
  return [...counts].map(([line, count]) => line.replace(' ', ` ${count} `) + '\n').sort().join('');
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
    const { objects, missing, layersOff } = survey(module, written(text));
    // Objects of foreign classes are missing from sound drawings too.
    const lost = missing.filter(({ type }) => type !== unknownEntity && type !== unknownObject).length;
    if (!text.trimEnd().endsWith('EOF') || lost > objects * 0.2 + 20) return ['damaged', 'only a part could be read'];
    const { text: whole, pictured } = picture(module, withLayersOn(text, layersOff).trimEnd() + '\r\n', missing);
    return ['ok', Buffer.from(whole + told(module, missing, pictured), 'latin1')];
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

/** Where texts are kept; null when there is no such place. A relative path would lead wherever one stands. */
function cacheFolderName() {
  if (process.env.TOLMEX_DWG_CACHE) return path.isAbsolute(process.env.TOLMEX_DWG_CACHE) ? process.env.TOLMEX_DWG_CACHE : null;
  const general = process.env.XDG_CACHE_HOME;
  if (general && path.isAbsolute(general)) return path.join(general, 'tolmex', 'dwg');
  const home = process.env.HOME ?? os.homedir();
  return path.isAbsolute(home) ? path.join(home, '.cache', 'tolmex', 'dwg') : null;
}
const cacheFolder = cacheFolderName();

/** Whether a file or folder is this user's and no other can write to it. */
function isOwn(status) {
  return status.uid === process.getuid() && (status.mode & 0o022) === 0;
}

/** The file that keeps the text of the drawing; null when none is kept. */
function cachedPath(bytes) {
  return cacheFolder && path.join(cacheFolder, `${createHash('sha256').update(mark).update(bytes).digest('hex')}.dxf`);
}

/** The line in front of a kept text: of which drawing it is, its length, its hash. */
function headOf(file, text) {
  const hash = createHash('sha256').update(text).digest('hex');
  return Buffer.from(`${path.basename(file, '.dxf')} ${text.length} ${hash}\n`, 'latin1');
}

function fromCache(file) {
  let descriptor = -1;
  try {
    if (!isOwn(fs.statSync(cacheFolder))) return null;
    descriptor = fs.openSync(file, fs.constants.O_RDONLY | fs.constants.O_NOFOLLOW | fs.constants.O_NONBLOCK);
    const status = fs.fstatSync(descriptor);
    if (!status.isFile() || !isOwn(status)) return null;
    const all = fs.readFileSync(descriptor);
    const text = all.subarray(all.indexOf(10) + 1);
    if (text.length === 0 || !all.subarray(0, all.length - text.length).equals(headOf(file, text))) return null;
    const now = new Date();
    fs.futimesSync(descriptor, now, now);
    return text;
  } catch {
    return null;
  } finally {
    if (descriptor >= 0) fs.closeSync(descriptor);
  }
}

/** Writes the file under another name first; what fails leaves nothing. */
function writeWhole(file, parts) {
  const temporary = `${file}.${randomUUID()}`;
  const descriptor = fs.openSync(temporary, 'wx', 0o600);
  try {
    try {
      for (const part of parts) {
        for (let at = 0; at < part.length;) at += fs.writeSync(descriptor, part, at);
      }
      fs.fsyncSync(descriptor);
    } finally {
      fs.closeSync(descriptor);
    }
    fs.renameSync(temporary, file);
  } catch (error) {
    fs.unlinkSync(temporary);
    throw error;
  }
}

/** Failing to keep a text costs time next time, nothing else. */
function keep(file, text) {
  try {
    fs.mkdirSync(cacheFolder, { recursive: true, mode: 0o700 });
    if (!isOwn(fs.statSync(cacheFolder))) return;
    writeWhole(file, [headOf(file, text), text]);
    const files = fs.readdirSync(cacheFolder).filter((name) => ownName.test(name)).map((name) => {
      const full = path.join(cacheFolder, name);
      const { size, mtimeMs } = fs.lstatSync(full);
      return { full, size, mtimeMs, isWhole: name.endsWith('.dxf') };
    });
    files.sort((a, b) => b.mtimeMs - a.mtimeMs);
    let total = 0;
    for (const { full, size, mtimeMs, isWhole } of files) {
      total += size;
      if (isWhole ? total > cacheLimit : mtimeMs < Date.now() - strayAge) fs.unlinkSync(full);
    }
  } catch {
    // Another process may be at the same file, the disk may be full.
  }
}

for (let bytes = nextRequest(); bytes !== null; bytes = nextRequest()) {
  const file = cachedPath(bytes);
  const known = file && fromCache(file);
  if (known !== null) {
    answer('ok', known);
    continue;
  }
  const [status, content] = await convert(bytes);
  if (status === 'ok' && file) keep(file, content);  // first: who has the answer may end this process
  answer(status, content);
}
