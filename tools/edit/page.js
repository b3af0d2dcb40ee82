"use strict";
// Shows the document as a form. Texts of the document reach the page as text only (textContent and value).
(() => {
const kChunk = 30;            // entries that are made together
const kRowHeight = 78;        // of an entry that was not made yet, in pixels
const kNear = "1200px";       // how far from the window entries are made
const kLongText = 120;        // longer texts get several lines
const kMostShown = 20000;     // characters of a text that is only shown
const kMostNamed = 300;       // characters of a name
const kMostSections = 2000;   // in the list
const kMostDifferences = 1000;  // in one table; those with a choice are all shown
const kMostRadios = 6;
const kMostNumbers = 32;      // choices that limits make
const kActivityPeriod = 15000;  // milliseconds; a quarter of the shortest --idle

const $ = (id) => document.getElementById(id);

function make(tag, properties, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties || {})) {
    if (value === undefined || value === null || value === false) continue;
    if (name === "class") element.className = value;
    else if (name === "text") element.textContent = value;
    else if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (name in element && typeof element[name] !== "object") element[name] = value;
    else element.setAttribute(name, value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

// ---- texts

// Control characters, what is invisible or changes the writing direction, and halves of characters.
const kInvisible = new RegExp(
  "[\\u0000-\\u0008\\u000b-\\u001f\\u007f-\\u009f\\u00ad\\u061c\\u180e\\u200b-\\u200f\\u2028-\\u202e\\u2060-\\u206f" +
  "\\ufeff\\ufff9-\\ufffb]|[\\ud800-\\udbff](?![\\udc00-\\udfff])|(?<![\\ud800-\\udbff])[\\udc00-\\udfff]", "g");
const codeOf = (unit) => "U+" + unit.charCodeAt(0).toString(16).toUpperCase().padStart(4, "0");

// The text with what cannot be seen, or what turns the text around, as codes.
function visible(text) {
  return text.replace(kInvisible, (unit) => "\u2039" + codeOf(unit) + "\u203a");
}

function shortened(text, most) {
  return text.length <= most ? text
    : text.slice(0, most) + "\u2026 (" + text.length.toLocaleString("en") + " characters)";
}

const shown = (text, most = kMostShown) => visible(shortened(text, most));

function invisibleIn(text) {
  return [...new Set(shortened(text, kMostShown).match(kInvisible) || [])].map(codeOf).slice(0, 8).join(", ");
}

function counted(count, one, several) {
  return count.toLocaleString("en") + " " + (count === 1 ? one : several);
}

// ---- the document

const kRanges = {
  short: [-32768, 32767], long: [-2147483648, 2147483647], byte: [0, 255], ushort: [0, 65535], ulong: [0, 4294967295]};
const kListControls = new Set(["radio", "radio_array", "state", "named_list_array", "named_array", "text_array",
  "switch_array", "prop_array"]);

let form = null;         // what the server, or the page itself, says
let isAlone = false;     // without a server
let isLost = false;      // the server has ended
let isUnsure = false;    // and has not answered a save
let entries = [];        // all of them, with their sections
let edits = new Map();   // entry -> the new text
let opened = new Set();  // protected entries that were unlocked
let past = [];           // steps that can be undone: {section, name, from, to}
let future = [];
let isExpert = false;
let pending = null;      // the conflict that is shown
let previewed = null;    // the call that saves what the dialog lists
let isBusy = false;      // while the server is asked for something that depends on the edits

const textOf = (entry) => edits.has(entry) ? edits.get(entry) : entry.value;
const nameOf = (entry) => entry.ui && entry.ui.shown_name || entry.name;
const control = (entry) => entry.ui ? entry.ui.control : "";
const isHidden = (entry) => Boolean(entry.ui && entry.ui.access === "hidden");

function toNumber(text) {
  const trimmed = text === undefined ? "" : text.trim();
  return /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/.test(trimmed) ? Number(trimmed) : NaN;
}

function limitsOf(entry) {
  const limits = {low: -Infinity, high: Infinity, lowText: "", highText: ""};
  const use = (number, text, isLow) => {
    if (Number.isNaN(number)) return;
    if (isLow && number > limits.low) { limits.low = number; limits.lowText = text; }
    if (!isLow && number < limits.high) { limits.high = number; limits.highText = text; }
  };
  const range = kRanges[entry.type];
  if (range) { use(range[0], String(range[0]), true); use(range[1], String(range[1]), false); }
  if (entry.ui) {
    use(toNumber(entry.ui.minimum), (entry.ui.minimum || "").trim(), true);
    use(toNumber(entry.ui.maximum), (entry.ui.maximum || "").trim(), false);
  }
  return limits;
}

// The choices that the provider or the limits in the file give; null if there are none.
function choicesOf(entry) {
  if (entry.shape || !entry.ui) return null;
  const given = form.choices && form.choices[(entry.ui.provider || "") + ":" + (entry.ui.provider_index || 0)];
  if (given) return given.map((choice) => typeof choice === "string" ? {value: choice, name: choice} : choice);
  if (!kListControls.has(control(entry)) || !kRanges[entry.type]) return null;
  const low = toNumber(entry.ui.minimum), high = toNumber(entry.ui.maximum);
  if (!Number.isInteger(low) || !Number.isInteger(high) || high < low || high - low >= kMostNumbers) return null;
  return Array.from({length: high - low + 1}, (_, i) => ({value: String(low + i), name: String(low + i)}));
}

// What kind of field an entry gets.
function kindOf(entry) {
  if (entry.shape) return entry.type === "byte" ? "bytes" : "text";
  if (choicesOf(entry)) return "choice";
  if (entry.type === "bool" || control(entry) === "switch")
    return /^(0|1|true|false)$/.test(entry.value) ? "switch" : "truth";
  if (kRanges[entry.type] || entry.type === "double" || control(entry) === "num") return "number";
  return "text";
}

// Why nobody can change the entry here; empty if somebody can.
function obstacle(entry) {
  if (entry.problem) return entry.problem;
  if (entry.section.element) return "This is an element of another kind, not a section.";
  if (!entry.section.found) return "Programs do not find this section: it has no name of its own.";
  return "";
}

// Why the entry is not for everybody; experts can change it.
function restriction(entry) {
  if (entry.ui && entry.ui.access === "visible") return "For reading only.";
  if (isHidden(entry)) return "Hidden from users.";
  if (control(entry) === "no_edit") return "The file says that this is not to be edited.";
  if (control(entry) === "button") return "A button of the program that uses the file.";
  if (entry.section.frozen) return "The section is not editable.";
  return "";
}

const isLocked = (entry) => Boolean(entry.eud) && !opened.has(entry);
const isEditable = (entry) =>
  !form.readOnly && !obstacle(entry) && !isLocked(entry) && (isExpert || !restriction(entry));

function describeLimits(entry) {
  const limits = limitsOf(entry);
  const what = kRanges[entry.type] ? "a whole number" : "a number";
  if (limits.lowText && limits.highText) return what + " from " + limits.lowText + " to " + limits.highText;
  if (limits.lowText) return what + " of at least " + limits.lowText;
  if (limits.highText) return what + " of at most " + limits.highText;
  return what;
}

function isNumberIn(entry, text) {
  const number = toNumber(text);
  const limits = limitsOf(entry);
  if (Number.isNaN(number) || number < limits.low || number > limits.high) return false;
  return !kRanges[entry.type] || /^[+-]?\d+$/.test(text.trim());
}

// What is wrong with a text for an entry; empty if nothing is.
function errorOf(entry, text) {
  if (/^[ \t\r\n]/.test(text)) return "A value cannot begin with a space, a tab or a line break.";
  if (/[\r\n]/.test(text)) return "A value cannot have line breaks: each save would add white space to them.";
  const kind = kindOf(entry);
  if (kind === "number" && !isNumberIn(entry, text)) return "Enter " + describeLimits(entry) + ".";
  if (kind === "bytes" && !/^([0-9A-Fa-f]{2})*$/.test(text))
    return "Enter bytes as pairs of hexadecimal digits, such as 00FF.";
  if (text === "" && entry.ui && entry.ui.value)
    return "The value cannot be empty: programs would read that of the presentation data, " +
      shown(entry.ui.value, 60) + ".";
  // eslint-disable-next-line no-control-regex
  const beyond = form.form === "narrow" && /[^\u0000-\u007f]/u.exec(text);
  if (beyond) return "This file can hold only unaccented letters, digits and signs (ASCII), not " +
    visible(beyond[0]) + ".";
  // With the flag, halves of characters are only those without a partner.
  const invisible = text.match(/[\u0000-\u0008\u000b\u000c\u000e-\u001f\ud800-\udfff\ufffe\uffff]/u);
  if (invisible) return "The value cannot contain " + codeOf(invisible[0]) + ".";
  return "";
}

const editError = (entry) => edits.has(entry) ? errorOf(entry, edits.get(entry)) : "";

function readForm(data) {
  form = data;
  entries = [];
  edits = new Map();
  opened = new Set();
  form.byName = new Map();
  for (const section of form.sections) {
    if (section.found) form.byName.set(section.name, section);
    section.title = section.element ? "<" + section.element + ">" : section.name || "(no name)";
    section.byName = new Map();
    for (const entry of section.entries) {
      if (!entry.problem && !section.byName.has(entry.name)) section.byName.set(entry.name, entry);
      entry.section = section;
      entry.number = entries.length;
      if (entry.value === undefined) entry.value = "";
      entries.push(entry);
    }
  }
}

function findEntry(sectionName, name) {
  const section = form.byName.get(sectionName);
  return section && section.byName.get(name);
}

// The changes as "mox-xml apply" reads them.
function changes(changed = edits) {
  return [...changed].map(([entry, text]) => {
    const change = {change: "changed"};
    if (form.kind !== "table") change.section = entry.section.name;
    return Object.assign(change,
      {entry: entry.name, field: "value", before: entry.own ? entry.value : "", after: text});
  });
}

// ---- edits

function set(entry, text) {
  if (text === entry.value) edits.delete(entry);
  else edits.set(entry, text);
  refresh(entry);
  refreshState();
}

// One step for what is typed into one field without leaving it.
function edit(entry, text, isTyping) {
  const from = textOf(entry);
  if (from === text) return;
  const last = past[past.length - 1];
  if (isTyping && last && last.isOpen && last.name === entry.name && last.section === entry.section.name) {
    last.to = text;
  } else {
    past.push({section: entry.section.name, name: entry.name, from, to: text, isOpen: isTyping});
  }
  future = [];
  set(entry, text);
  tellActivity();
}

function closeStep() {
  if (past.length) past[past.length - 1].isOpen = false;
}

function step(source, target, key) {
  closeStep();
  const change = source.pop();
  if (!change) return;
  target.push(change);
  const entry = findEntry(change.section, change.name);
  if (entry) {
    set(entry, change[key]);
    reveal(entry);
    say((key === "from" ? "Undone: " : "Redone: ") + nameOf(entry));
  }
  refreshState();
}

const undo = () => step(past, future, "from");
const redo = () => step(future, past, "to");

// ---- the list of entries

let items = [];         // what is listed: {entry}, {section} for a heading, or {others}
let chunks = [];
let placeOf = new Map(); // entry -> index of its chunk
let current = null;     // the section that is shown; null: all
let filter = "";

const observer = new IntersectionObserver((changed) => {
  for (const change of changed) {
    const chunk = change.target.chunk;
    if (!chunk) continue;
    if (change.isIntersecting) fill(chunk);
    else if (!isAlone) clear(chunk);
  }
}, {rootMargin: kNear + " 0px"});

function fill(chunk) {
  if (chunk.isFilled) return;
  chunk.isFilled = true;
  chunk.element.style.height = "";
  chunk.element.append(...chunk.items.map(makeItem));
}

function clear(chunk) {
  if (!chunk.isFilled || chunk.element.contains(document.activeElement)) return;
  chunk.element.style.height = chunk.element.offsetHeight + "px";
  chunk.element.replaceChildren();
  chunk.isFilled = false;
  for (const item of chunk.items) if (item.entry) item.entry.row = null;
}

function makeItem(item) {
  if (item.entry) return makeRow(item.entry);
  if (item.section) return make("h3", {class: "part"}, make("bdi", {text: shown(item.section.title, kMostNamed)}));
  return make("div", {class: "others"},
    make("p", {text: "Also in the file, and kept as it is:"}),
    make("ul", {}, ...item.others.map((other) =>
      make("li", {}, make("bdi", {text: shown((other.comment !== undefined ? "Comment: " : "") +
        (other.comment !== undefined ? other.comment : other.element))})))));
}

function matches(entry) {
  if (entry.words === undefined) {
    entry.words = [entry.name, entry.section.name, entry.ui && entry.ui.shown_name, entry.ui && entry.ui.comment]
      .filter(Boolean).join("\n").toLowerCase();
  }
  return entry.words.includes(filter) || textOf(entry).toLowerCase().includes(filter);
}

function listItems() {
  const list = [];
  let count = 0;
  for (const section of form.sections) {
    if (current && section !== current && !filter) continue;
    const found = section.entries.filter((entry) => (isExpert || !isHidden(entry)) && (!filter || matches(entry)));
    if (!found.length && filter) continue;
    if ((filter || !current) && form.kind !== "table") list.push({section});
    for (const entry of found) list.push({entry});
    count += found.length;
    if (!filter && section.others) list.push({others: section.others});
  }
  if (!filter && form.others && (!current || current === form.sections[form.sections.length - 1]))
    list.push({others: form.others});
  return {list, count};
}

function list() {
  observer.disconnect();
  for (const entry of entries) entry.row = null;
  const {list: wanted, count} = listItems();
  items = wanted;
  chunks = [];
  placeOf = new Map();
  const elements = [];
  for (let at = 0; at < items.length; at += kChunk) {
    const chunk = {items: items.slice(at, at + kChunk), isFilled: false, element: make("div", {class: "chunk"})};
    chunk.element.chunk = chunk;
    chunk.element.style.height = chunk.items.length * kRowHeight + "px";
    for (const item of chunk.items) if (item.entry) placeOf.set(item.entry, chunks.length);
    chunks.push(chunk);
    elements.push(chunk.element);
  }
  $("entries").replaceChildren(...elements);
  if (!items.length) $("entries").append(make("p", {class: "none",
    text: filter ? "No entry matches the filter." : "There are no entries to show."}));
  if (chunks.length) fill(chunks[0]);
  for (const chunk of chunks) observer.observe(chunk.element);
  const heading = filter ? "Found in all sections" : current ? current.title : form.kind === "table"
    ? form.sections[0].title : "All sections";
  $("heading").replaceChildren(make("bdi", {text: shown(heading, kMostNamed)}));
  $("count").textContent = counted(count, "entry", "entries");
  listSections();
  const button = $("sections").querySelector("[aria-current]");
  if (button) button.scrollIntoView({block: "nearest", inline: "nearest"});
}

function listSections() {
  const buttons = [];
  const add = (section, title, number) => {
    const changed = section ? section.entries.filter((entry) => edits.has(entry)).length : 0;
    const isCurrent = !filter && current === section;
    buttons.push(make("li", {}, make("button", {
      type: "button", "aria-current": isCurrent ? "page" : null, onclick: () => show(section)},
      make("bdi", {text: shown(title, 60)}),
      make("span", {class: "number"}, changed ? make("span", {class: "marks", text: changed + " changed "}) : null,
        make("span", {class: "unseen", text: ", "}), String(number),
        make("span", {class: "unseen", text: " entries"})))));
  };
  const visibleCount = (section) =>
    isExpert ? section.entries.length : section.entries.reduce((sum, entry) => sum + (isHidden(entry) ? 0 : 1), 0);
  if (form.sections.length !== 1)
    add(null, "All sections", form.sections.reduce((sum, section) => sum + visibleCount(section), 0));
  for (const section of form.sections.slice(0, kMostSections)) add(section, section.title, visibleCount(section));
  if (form.sections.length > kMostSections)
    buttons.push(make("li", {class: "hint", text: "The others are in \u201cAll sections\u201d."}));
  const focused = [...$("sections").querySelectorAll("button")].indexOf(document.activeElement);
  $("sections").replaceChildren(...buttons);
  if (focused >= 0) $("sections").querySelectorAll("button")[focused]?.focus();
}

function show(section) {
  closeStep();
  current = section;
  filter = "";
  $("filter").value = "";
  list();
  window.scrollTo(0, 0);
  $("main").focus({preventScroll: true});
}

// Brings an entry into view and puts the focus into its field.
function reveal(entry) {
  if (!placeOf.has(entry)) {
    if (isHidden(entry) && !isExpert) { isExpert = true; $("expert").checked = true; }
    current = current && entry.section;
    filter = "";
    $("filter").value = "";
    list();
  }
  fill(chunks[placeOf.get(entry)]);
  entry.row.scrollIntoView({block: "center"});
  const field = entry.row.querySelector("input:not([disabled]), select:not([disabled]), textarea:not([disabled])");
  if (field) field.focus({preventScroll: true});
}

// ---- one entry

function makeRow(entry) {
  const id = "e" + entry.number;
  const row = make("div", {class: "entry"});
  entry.row = row;
  row.parts = {};
  const caption = shown(nameOf(entry) || "(no name)", kMostNamed);
  const isOpen = isEditable(entry);
  const field = form.readOnly || obstacle(entry) ? makeValue(entry) : makeField(entry, id, caption, isOpen);
  const label = make(field.labels ? "label" : "div", {class: "label", id: id + "l"}, make("bdi", {text: caption}));
  if (field.labels) label.htmlFor = id;
  const names = make("div", {}, label);
  const details = [];
  if (entry.ui && entry.ui.shown_name && entry.ui.shown_name !== entry.name) details.push(entry.name || "(no name)");
  if (isExpert) {
    details.push(entry.type ? entry.type + (entry.shape ? " " + entry.shape : "") : "no type");
    if (entry.id) details.push("id " + entry.id);
    if (entry.ui) details.push(entry.ui.control);
    if (entry.ui && entry.ui.provider) details.push(entry.ui.provider + ":" + (entry.ui.provider_index || 0));
  }
  if (details.length)
    names.append(make("p", {class: "key"}, make("bdi", {text: shown(details.join(" \u00b7 "), kMostNamed)})));
  row.append(names, make("div", {class: "control"},
    field.element, makeRevert(entry, caption), makeUnlock(entry, caption)));

  const texts = make("div", {class: "texts", id: id + "t"});
  row.parts.state = make("p", {class: "state hint"});
  row.parts.error = make("p", {class: "error", id: id + "r"});
  texts.append(row.parts.error, row.parts.state);
  const say = (kind, text) => texts.append(make("p", {class: kind}, make("bdi", {text})));
  if (entry.ui && entry.ui.comment) say("help", shown(entry.ui.comment));
  for (const hint of hintsOf(entry)) say("hint", hint);
  row.append(texts);
  refresh(entry);
  return row;
}

function hintsOf(entry) {
  const hints = [];
  const isOpen = isEditable(entry);
  if (isOpen && kindOf(entry) === "number") {
    const isNumber = (text) => !Number.isNaN(toNumber(text));
    const isLimited = entry.ui && (isNumber(entry.ui.minimum) || isNumber(entry.ui.maximum));
    const limits = describeLimits(entry);
    if (isLimited) hints.push(limits[0].toUpperCase() + limits.slice(1) + ".");
  }
  if (isOpen && kindOf(entry) === "bytes") hints.push("Bytes, as pairs of hexadecimal digits.");
  if (isOpen && kListControls.has(control(entry)) && kindOf(entry) !== "choice")
    hints.push("The file does not say which choices there are.");
  if (obstacle(entry)) hints.push(obstacle(entry));
  else if (!form.readOnly && restriction(entry) && !isExpert) hints.push(restriction(entry));
  if (entry.eud) hints.push(isLocked(entry) && !form.readOnly && !obstacle(entry)
    ? "Protected: unlock it to change it." : "Protected (eud).");
  if (/[\r\n]/.test(entry.value)) hints.push("The value has line breaks.");
  const invisible = invisibleIn(entry.value.replace(/\r/g, ""));
  if (invisible) hints.push("The value has characters that cannot be seen: " + invisible + ".");
  if (!form.readOnly && !edits.has(entry) && !obstacle(entry) && entry.value !== "" && errorOf(entry, entry.value) &&
      !/[\r\n]/.test(entry.value)) hints.push("Does not suit the entry. " + errorOf(entry, entry.value));
  for (const note of entry.notes || []) hints.push("Note: " + shown(note, 1000));
  for (const other of entry.others || [])
    hints.push((other.comment !== undefined ? "Comment: " : "Also in the entry: ") +
      shown(other.comment !== undefined ? other.comment : other.element, 2000));
  return hints;
}

// The value in the file, as its control shows it.
function describeValue(entry, most) {
  const kind = entry.type ? kindOf(entry) : "text";
  if (kind === "switch") return /^(1|true)$/.test(entry.value) ? "on" : "off";
  const choice = kind === "choice" && choicesOf(entry).find((candidate) => candidate.value === entry.value);
  return shown(choice ? choice.name : entry.value, most);
}

// The value as a text.
function makeValue(entry) {
  const text = describeValue(entry);
  return {labels: false, element: make("div", {class: "field value" + (text ? "" : " empty") +
    (kindOf(entry) === "bytes" ? " bytes" : "")}, make("bdi", {text: text || "(empty)"}))};
}

function makeField(entry, id, caption, isOpen) {
  const kind = kindOf(entry);
  const common = {id, disabled: !isOpen, "aria-describedby": id + "r " + id + "t"};
  const parts = entry.row.parts;
  if (kind === "switch") {
    const on = /^(1|0)$/.test(entry.value) ? ["1", "0"] : ["true", "false"];
    const word = make("span", {"aria-hidden": "true"});
    const box = make("input", {...common, type: "checkbox", onchange: () => edit(entry, box.checked ? on[0] : on[1])});
    parts.field = box;
    parts.put = (text) => {
      box.checked = text === on[0];
      word.textContent = box.checked ? "on" : "off";
    };
    return {labels: true, element: make("div", {class: "field switch"}, box, word)};
  }
  if (kind === "choice" || kind === "truth") return makeChoice(entry, id, common);
  const isLong = entry.value.length > kLongText || /[\r\n]/.test(entry.value);
  const field = make(isLong ? "textarea" : "input", {
    ...common, class: "field" + (kind === "number" ? " short" : "") + (kind === "bytes" ? " bytes" : ""),
    autocomplete: "off", spellcheck: false, oninput: () => edit(entry, field.value, true), onblur: closeStep});
  if (isLong) field.rows = Math.min(8, Math.max(2, Math.ceil(entry.value.length / 60)));
  else field.type = "text";
  if (kind === "number") field.inputMode = kRanges[entry.type] && limitsOf(entry).low >= 0 ? "numeric" : "text";
  parts.field = field;
  parts.put = (text) => { if (field.value !== text) field.value = text; };
  return {labels: true, element: field};
}

function makeChoice(entry, id, common) {
  const choices = choicesOf(entry) || [{value: "1", name: "on"}, {value: "0", name: "off"}];
  if (!choices.some((choice) => choice.value === entry.value))
    choices.unshift({value: entry.value,
      name: entry.value === "" ? "(empty)" : entry.value + " (not one of the choices)"});
  const parts = entry.row.parts;
  if (choices.length > kMostRadios) {
    const list = make("select", {
      ...common, class: "field", onchange: () => edit(entry, choices[list.selectedIndex].value)},
      ...choices.map((choice) => make("option", {text: shown(choice.name, kMostNamed)})));
    parts.field = list;
    parts.put = (text) => { list.selectedIndex = choices.findIndex((choice) => choice.value === text); };
    return {labels: true, element: list};
  }
  const boxes = choices.map((choice, index) => make("input", {
    type: "radio", name: id, id: id + "c" + index, disabled: common.disabled,
    onchange: () => edit(entry, choice.value)}));
  const group = make("fieldset", {class: "field", role: "radiogroup", "aria-labelledby": id + "l",
    "aria-describedby": common["aria-describedby"]},
    ...choices.map((choice, index) =>
      make("label", {}, boxes[index], make("bdi", {text: shown(choice.name, kMostNamed)}))));
  parts.field = group;
  parts.put = (text) => boxes.forEach((box, index) => { box.checked = choices[index].value === text; });
  return {labels: false, element: group};
}

function makeRevert(entry, caption) {
  if (form.readOnly || obstacle(entry)) return null;
  const button = make("button", {type: "button", class: "revert", hidden: true, "aria-label": "Take back " + caption,
    text: "Take back", onclick: () => {
      edit(entry, entry.value);
      (entry.row.querySelector("input, select, textarea") || button).focus();
    }});
  entry.row.parts.revert = button;
  return button;
}

function makeUnlock(entry, caption) {
  if (form.readOnly || obstacle(entry) || !isLocked(entry)) return null;
  const unlock = () => {
    opened.add(entry);
    const old = entry.row;
    old.replaceWith(makeRow(entry));
    reveal(entry);
    say(caption + " is unlocked");
  };
  return make("button",
    {type: "button", class: "unlock", "aria-label": "Unlock " + caption, text: "Unlock", onclick: unlock});
}

// Shows the state of an entry, if it is on the page.
function refresh(entry) {
  const row = entry.row;
  if (!row) return;
  const {field, put, revert, state, error} = row.parts;
  const isChanged = edits.has(entry);
  const message = editError(entry);
  if (put) put(textOf(entry));
  row.classList.toggle("changed", isChanged);
  row.classList.toggle("wrong", Boolean(message));
  if (revert) revert.hidden = !isChanged;
  state.textContent = isChanged ? "Changed; in the file: " + (describeValue(entry, 200) || "(empty)") : "";
  state.hidden = !isChanged;
  if (error.textContent !== message) {
    error.textContent = message;
    if (message) say(nameOf(entry) + ": " + message);
  }
  if (field) {
    if (message) field.setAttribute("aria-invalid", "true");
    else field.removeAttribute("aria-invalid");
  }
}

let isRefreshing = false;
function refreshState() {
  $("undo").disabled = !past.length;
  $("redo").disabled = !future.length;
  $("save").disabled = !edits.size;
  $("save").textContent = edits.size ? "Save " + counted(edits.size, "change", "changes") : "Save";
  document.title = (edits.size ? "* " : "") + visible(form.file || "mox-xml");
  if (isRefreshing) return;
  isRefreshing = true;
  requestAnimationFrame(() => {
    isRefreshing = false;
    listSections();
    if (isLost) lose();  // the list has the newest changes
  });
}

function say(text) {
  $("status").textContent = "";
  $("status").textContent = shown(text, kMostNamed);
}

function alertUser(text, isInfo, ...more) {
  $("alert").replaceChildren(make("span", {text: shown(text, 2000)}), ...more.filter(Boolean));
  $("alert").classList.toggle("info", Boolean(isInfo));
  $("alert").hidden = !text;
}

// ---- the server

const kUnsure = "The editor has ended before it said whether it has saved your changes. Look at the file.";

// The targets are relative to the folder of the page.
async function call(target, body) {
  const options = body === undefined ? {} : {
    method: "POST", headers: {"Content-Type": "application/json"}, body: JSON.stringify(body)};
  let response, answer;
  try {
    response = await fetch(target, {...options, credentials: "same-origin", cache: "no-store"});
    answer = response.status === 204 ? null : await response.json();
  } catch (error) {
    isUnsure = isUnsure || target === "save" || target === "overwrite";
    lose();
    throw new Error(isUnsure ? kUnsure : "The editor has ended. Your changes are still in this page.");
  }
  if (!response.ok) throw new Error(answer.error || "The editor answers with the status " + response.status + ".");
  return answer;
}

// A call during which nothing can be edited, so that its answer belongs to what the page shows.
async function callAlone(target, body) {
  const focused = document.activeElement;
  setBusy(true);
  try {
    return await call(target, body);
  } finally {
    setBusy(false);
    focused.focus({preventScroll: true});  // what is inert, or disabled, loses it
  }
}

function setBusy(busy) {
  isBusy = busy;
  for (const element of document.querySelectorAll("header, .bar, .columns")) element.inert = busy;
  for (const button of document.querySelectorAll("dialog button, dialog input")) button.disabled = busy;
}

// The server is gone: the changes are offered as a list for "mox-xml apply".
function lose() {
  isLost = true;
  if (!edits.size) return alertUser("The editor has ended. You can close this page.", true);
  alertUser((isUnsure ? kUnsure : "The editor has ended. Your changes were not saved.") + " " +
    "\u201cmox-xml apply FILE CHANGES\u201d makes them from this list:", false, makeChangeList(changes()));
}

function makeChangeList(list) {
  return make("textarea", {readOnly: true, rows: 5, "aria-label": "The changes as JSON",
    value: JSON.stringify(list, null, 1)});
}

let activityTimer = 0;
let isActive = false;  // since the editor was told

// What follows soon is told at the end of the period.
function tellActivity() {
  if (isAlone || isLost) return;
  isActive = true;
  if (activityTimer) return;
  isActive = false;
  call("active", {}).catch(() => {});
  activityTimer = setTimeout(() => {
    activityTimer = 0;
    if (isActive) tellActivity();
  }, kActivityPeriod);
}

// ---- saving

const kFieldNames = {eud: "protection", "ui.value": "displayed value", "ui.comment": "comment",
  "ui.shown_name": "displayed name", "ui.minimum": "minimum", "ui.maximum": "maximum", "ui.control": "control",
  "ui.access": "access"};

// "Camera / Exposure time (comment)"
function placeOfField(part) {
  const entry = part.entry === undefined ? null : findEntry(part.section, part.entry);
  const names = form.kind === "table" && part.entry !== undefined ? [] : [part.section];
  if (part.entry !== undefined)
    names.push((entry ? nameOf(entry) : part.entry) + (part.occurrence ? " #" + part.occurrence : ""));
  const field = part.field && part.field !== "value" ? " (" + (kFieldNames[part.field] || part.field) + ")" : "";
  return shown(names.join(" / ") + field, kMostNamed);
}

function differenceRow(difference) {
  const {before = "", after = ""} = difference;
  const isSpace = before !== after && before.replace(/\s/g, "") === after.replace(/\s/g, "");
  const text = (value) => value === undefined ? "(missing)" : value === "" ? "(empty)"
    : shown(isSpace ? value.replace(/\n/g, "\u21b5\n").replace(/\t/g, "\u21e5") : value, 500);
  return make("tr", {}, make("th", {scope: "row"}, make("bdi", {text: placeOfField(difference)})),
    make("td", {class: "old"}, make("bdi", {text: text(difference.before)})),
    make("td", {}, make("bdi", {text: text(difference.after)})));
}

const tableHead = (...names) =>
  make("thead", {}, make("tr", {}, ...names.map((text) => make("th", {scope: "col", text}))));

function differenceTable(caption, differences) {
  return make("table", {class: "changes"}, make("caption", {text: caption}),
    tableHead("Entry", "In the file", "New"),
    make("tbody", {}, ...differences.slice(0, kMostDifferences).map(differenceRow), moreRow(differences.length, 3)));
}

const moreRow = (count, columns) => count <= kMostDifferences ? null
  : make("tr", {}, make("td", {colSpan: columns, text: "and " + (count - kMostDifferences) + " more"}));

async function startSaving() {
  closeStep();
  if (isLost) return lose();
  if (isBusy || !edits.size || form.readOnly) return;
  const wrong = [...edits.keys()].find(editError);
  if (wrong) {
    reveal(wrong);
    return alertUser("Nothing was saved: " + nameOf(wrong) + " has an error. " + editError(wrong));
  }
  alertUser("");
  try {
    const asked = {version: form.version, changes: changes()};
    const preview = await callAlone("preview", asked);
    previewed = asked;
    const tables = [differenceTable(counted(preview.asked.length, "change", "changes"), preview.asked)];
    if (preview.besides.length)
      tables.push(differenceTable("The library changes these with every save:", preview.besides));
    $("savingList").replaceChildren(...tables);
    $("savingError").textContent = "";
    $("saving").showModal();
    $("confirmSaving").focus();
  } catch (error) {
    showRefusal(error);
  }
}

// Messages of the tool name the change by its number.
function showRefusal(error) {
  if (isLost) return;  // lose() has said so
  const number = /: change (\d+): /.exec(error.message);
  const entry = number && [...edits.keys()][Number(number[1]) - 1];
  if (entry) reveal(entry);
  // Another page of this editor has saved, and loading this one again drops its changes.
  const isOld = error.message.endsWith("load the page again");
  alertUser("Nothing was saved. " + error.message, false, isOld ? makeChangeList(changes()) : null);
}

async function confirmSaving() {
  try {
    takeAnswer(await callAlone("save", {...previewed, backup: $("backup").checked}));
  } catch (error) {
    $("savingError").textContent = shown(error.message, 2000);
  }
}

function takeAnswer(answer) {
  if (answer.conflict) {
    $("saving").close();
    return showConflict(answer.conflict);
  }
  $("saving").close();
  if ($("conflict").open) $("conflict").close();
  if (answer.saved) replaceForm(answer.document);
  else replaceForm(form);
  alertUser(answer.saved ? "Saved." : "There was nothing to save.", true);
  say("Saved");
  $("main").focus({preventScroll: true});
}

// Shows another state of the document in the same place.
function replaceForm(data) {
  const place = window.scrollY;
  const index = current ? form.sections.indexOf(current) : -1;
  const name = current && current.name;
  readForm(data);
  current = index < 0 ? null
    : form.sections[index] && form.sections[index].name === name ? form.sections[index]
    : form.sections.find((section) => section.name === name) || form.sections[0] || null;
  list();
  refreshState();
  window.scrollTo(0, place);
}

// ---- conflicts

function showConflict(conflict) {
  pending = {conflict, choices: new Map()};
  const isReadable = !conflict.unreadable;
  for (const id of ["allTheirs", "allMine"]) $(id).hidden = !isReadable;
  $("confirmConflict").textContent = isReadable ? "Go on" : "Replace it with my version";
  $("conflictError").textContent = "";
  $("conflictText").textContent = isReadable
    ? "Another program has changed it since you opened it. Nothing was saved. Choose what to keep."
    : "It cannot be read any more. Nothing was saved. You can replace it with your version of what it was.";
  $("conflictList").replaceChildren(isReadable ? conflictTable(conflict.rows)
    : make("p", {}, make("bdi", {text: shown(conflict.unreadable, 1000)})));
  refreshConflict();
  $("conflict").showModal();
}

function conflictTable(rows) {
  const cell = (text, row) => make("td", {}, make("bdi", {text: text === undefined ? "(missing)"
    : text === "" ? (row.field || row.entry === undefined ? "(empty)" : "") : shown(text, 500)}));
  const own = rows.filter(editOf);
  const others = rows.filter((row) => row.by !== "mine" && !editOf(row));
  const body = [...own, ...others.slice(0, kMostDifferences)].map((row) => {
    const place = placeOfField(row);
    return make("tr", {}, make("th", {scope: "row"}, make("bdi", {text: place})),
      cell(row.base, row), cell(row.theirs, row), cell(row.mine, row), choiceCell(row, place));
  });
  return make("table", {class: "versions"},
    tableHead("Entry", "When you opened it", "On disk now", "Yours", "Keep"),
    make("tbody", {}, ...body, moreRow(others.length, 5)));
}

// The edit of this page that a row is about.
function editOf(row) {
  if (row.field !== "value" || row.occurrence || row.entry === undefined) return null;
  const entry = findEntry(row.section, row.entry);
  return entry && edits.has(entry) ? entry : null;
}

function choiceCell(row, place) {
  const entry = editOf(row);
  if (row.by === "mine") return make("td", {text: "yours"});
  if (!entry || row.by === "both") return make("td", {text: row.by === "both" ? "both alike" : "from disk"});
  if (row.theirs === undefined) return make("td", {text: "from disk: the entry is gone"});
  pending.choices.set(entry, "");
  const radio = (value, text) => make("label", {}, make("input", {type: "radio", name: "keep" + entry.number, value,
    "aria-label": "Keep " + text + ": " + shown(place, 100),
    onchange: () => { pending.choices.set(entry, value); refreshConflict(); }}), text);
  return make("td", {}, radio("theirs", "from disk"), radio("mine", "mine"));
}

function refreshConflict() {
  const isOpen = [...pending.choices.values()].some((choice) => choice === "");
  $("confirmConflict").disabled = !pending.conflict.unreadable && isOpen;
}

function chooseAll(value) {
  for (const radio of $("conflictList").querySelectorAll("input[value=" + value + "]")) {
    radio.checked = true;
    radio.dispatchEvent(new Event("change"));
  }
}

async function confirmConflict() {
  const {conflict, choices} = pending;
  try {
    if (conflict.unreadable) {
      const answer = await callAlone("overwrite",
        {version: conflict.version, changes: changes(), backup: $("backup").checked});
      $("conflict").close();
      return takeAnswer(answer);
    }
    const kept = [...edits].filter(([entry]) => choices.get(entry) !== "theirs")
      .map(([entry, text]) => ({section: entry.section.name, name: entry.name, text,
        change: changes([[entry, text]])[0]}));
    const data = await callAlone("rebase", {version: conflict.version});
    $("conflict").close();
    past = [];
    future = [];
    replaceForm(data);
    const unplaced = [];
    for (const {section, name, text, change} of kept) {
      const entry = findEntry(section, name);
      if (entry && !obstacle(entry)) edit(entry, text);
      else unplaced.push(change);
    }
    if (unplaced.length) {
      // Saving would replace the message.
      alertUser(counted(unplaced.length, "change has", "changes have") +
        " no place in the file as it is on disk now, and will not be saved. Copy what you need from this list:",
        false, makeChangeList(unplaced));
    } else if (edits.size) await startSaving();
    else alertUser("The page shows the file as it is on disk now.", true);
  } catch (error) {
    $("conflictError").textContent = shown(error.message, 2000);
  }
}

// ---- the page

function fillAll() {
  current = null;
  filter = "";
  list();
  for (const chunk of chunks) fill(chunk);
}

function connect() {
  const open = new EventSource("open");  // by which the editor knows that the page is open
  open.addEventListener("error", () => {
    open.close();
    lose();
  });
}

function bind() {
  $("undo").addEventListener("click", undo);
  $("redo").addEventListener("click", redo);
  $("save").addEventListener("click", startSaving);
  $("end").addEventListener("click", async () => {
    if (edits.size && !window.confirm("End the editor without saving the changes?")) return;
    edits = new Map();
    await call("end", {}).catch(() => {});
    list();
    refreshState();
    lose();
  });
  $("confirmSaving").addEventListener("click", confirmSaving);
  $("cancelSaving").addEventListener("click", () => $("saving").close());
  $("confirmConflict").addEventListener("click", confirmConflict);
  $("cancelConflict").addEventListener("click", () => $("conflict").close());
  $("allTheirs").addEventListener("click", () => chooseAll("theirs"));
  $("allMine").addEventListener("click", () => chooseAll("mine"));
  let timer = 0;
  $("filter").addEventListener("input", () => {
    clearTimeout(timer);
    timer = setTimeout(() => {
      filter = $("filter").value.trim().toLowerCase();
      list();
    }, 120);
  });
  $("expert").addEventListener("change", () => {
    isExpert = $("expert").checked;
    list();
  });
  for (const id of ["saving", "conflict"])
    $(id).addEventListener("cancel", (event) => { if (isBusy) event.preventDefault(); });
  document.addEventListener("keydown", (event) => {
    // The second Escape would close a dialog in spite of the event "cancel".
    if (isBusy && event.key === "Escape") event.preventDefault();
    if (!(event.ctrlKey || event.metaKey) || event.altKey || document.querySelector("dialog[open]")) return;
    const key = event.key.toLowerCase();
    const action = key === "z" ? (event.shiftKey ? redo : undo) : key === "y" ? redo : key === "s" ? startSaving : null;
    if (!action || form.readOnly || (key !== "s" && event.target === $("filter"))) return;
    event.preventDefault();
    if (!isBusy) action();
  });
  window.addEventListener("beforeunload", (event) => { if (edits.size) event.preventDefault(); });
  window.addEventListener("beforeprint", fillAll);
  for (const kind of ["keydown", "pointerdown", "wheel"])
    window.addEventListener(kind, tellActivity, {passive: true});
}

function start(data) {
  readForm(data);
  current = isAlone || form.sections.length === 0 ? null : form.sections[0];
  if (form.sections.length === 1) current = form.sections[0];
  $("file").replaceChildren(make("bdi", {text: shown(form.file || "A document", kMostNamed)}));
  $("path").replaceChildren(make("bdi", {text: shown(form.path || "", 1000)}));
  $("path").hidden = !form.path;
  $("backupText").textContent = "Keep the old file as " + shown(form.file || "", 100) + ".bak";
  $("actions").hidden = isAlone;
  for (const id of ["undo", "redo", "save"]) $(id).hidden = Boolean(form.readOnly);
  if (form.readOnly) alertUser(form.readOnly, true);
  bind();
  list();
  refreshState();
}

const embedded = JSON.parse($("data").textContent);
if (embedded) {
  isAlone = true;
  start(embedded);
} else {
  // First: the editor ends soon after a page was closed unless another one is open, and a large document takes long.
  connect();
  call("document").then(start).catch((error) => { if (!isLost) alertUser(error.message); });
}
})();
