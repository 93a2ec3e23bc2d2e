// Makes a form from a schema: choices for what may be chosen, numbers with their bounds, lists that grow.

import { el, prose } from './dom.js';
import { choices, hint, inWords, resolve, typeOf } from './schema.js';

let made = 0;

// A control: {element, value(), fill(value), mark(problems)}. value() is undefined for what is not to be sent.
// context: {document, name, path, required, twin}; `twin` is the schema of the same thing in a GET's answer.
function control(schema, context) {
  const own = resolve(schema, context.document);
  const kind = { object: objectControl, array: listControl }[typeOf(own)];
  return kind ? kind(own, context) : fieldControl(own, context);
}

// Whether a description says no more than the labels of the choices do.
function isSaid(own) {
  const labels = choices({ ...own, descriptions: undefined })?.map(({ label }) => label) ?? [];
  return labels.length > 0 && labels.every((label) => label.includes(' · '));
}

function labelled(id, own, context) {
  const bounds = hint(own);
  const notes = [isSaid(own) ? '' : own.description, bounds.charAt(0).toUpperCase() + bounds.slice(1)].filter(Boolean).join(' ');
  const help = el('p', { class: 'help', id: `${id}-help`, hidden: !notes }, notes ? prose(/[.!]$/.test(notes) ? notes : `${notes}.`) : []);
  const wrong = el('p', { class: 'wrong', id: `${id}-wrong`, hidden: true });
  const label = el('label', { for: id }, inWords(String(context.name)), ' ', el('code', {}, context.name),
    context.required ? null : el('span', { class: 'optional' }, 'optional'));
  return { help, wrong, label };
}

const LEFT_OUT = 'left out';

function selectInput(options, id, required) {
  const input = el('select', { id }, required ? el('option', { value: '' }, '—') : el('option', { value: '' }, LEFT_OUT),
    options.map((option, i) => el('option', { value: `${i}` }, option.label)));
  return {
    input,
    read: () => (input.value === '' ? undefined : options[Number(input.value)].value),
    write(value) {
      const at = options.findIndex((option) => option.value === value);
      input.value = at < 0 ? '' : String(at);
    },
  };
}

function numberInput(own, id) {
  const input = el('input', { id, type: 'text', inputmode: 'numeric', autocomplete: 'off' });
  return {
    input,
    read: () => (input.value.trim() === '' ? undefined : /^-?\d{1,15}$/.test(input.value.trim()) ? Number(input.value) : input.value),
    write(value) { input.value = value ?? ''; },
  };
}

// An empty text is a value, too: `touched` tells it from one that is left out.
function textInput(own, id, required) {
  const input = el('input', { id, type: 'text', autocomplete: 'off', spellcheck: 'false' });
  let touched = required;
  input.addEventListener('input', () => { touched = true; });
  return {
    input,
    read: () => (input.value === '' && !touched ? undefined : input.value),
    write(value) {
      touched = required || value !== undefined;
      input.value = value ?? '';
    },
  };
}

function inputFor(own, id, { required, twin }) {
  const options = choices(own, twin);
  if (options) return selectInput(options, id, required);
  return typeOf(own) === 'integer' ? numberInput(own, id) : textInput(own, id, required);
}

function fieldControl(own, context) {
  const id = `field-${++made}`;
  const { help, wrong, label } = labelled(id, own, context);
  const { input, read, write } = inputFor(own, id, context);
  input.setAttribute('aria-describedby', `${id}-wrong ${id}-help`);
  if (context.required) input.setAttribute('aria-required', 'true');
  return {
    element: el('div', { class: 'field', 'data-name': context.path.join('.') }, label, input, wrong, help),
    value: read, fill: write,
    mark(problems) {
      const mine = problems.find((problem) => problem.path.join('/') === context.path.join('/'));
      wrong.hidden = !mine;
      wrong.textContent = mine?.text ?? '';
      if (mine) input.setAttribute('aria-invalid', 'true');
      else input.removeAttribute('aria-invalid');
      return mine ? [{ input, name: context.name, text: mine.text }] : [];
    },
  };
}

function objectControl(own, context) {
  const twin = resolve(context.twin ?? {}, context.document);
  const twins = new Map(Object.entries(twin.properties ?? {}).map(([name, member]) => [name.toLowerCase(), resolve(member, context.document)]));
  const members = Object.entries(own.properties ?? {}).map(([name, member]) => [name, control(member, {
    ...context, name, path: [...context.path, name], required: own.required?.includes(name) ?? false, twin: twins.get(name.toLowerCase()),
  })]);
  const fields = members.map(([, member]) => member.element);
  const element = context.path.length === 0 ? el('div', { class: 'fields' }, fields)
    : el('fieldset', {}, el('legend', {}, typeof context.name === 'number' ? `Entry ${context.name + 1}` : [inWords(context.name), ' ', el('code', {}, context.name)]),
      el('div', { class: 'fields' }, fields));
  return {
    element,
    value() {
      const entries = members.map(([name, member]) => [name, member.value()]).filter(([, value]) => value !== undefined);
      return entries.length === 0 && !context.required && context.path.length > 0 ? undefined : Object.fromEntries(entries);
    },
    fill(value) {
      for (const [name, member] of members) member.fill(value?.[name]);
    },
    mark: (problems) => members.flatMap(([, member]) => member.mark(problems)),
  };
}

const MOST_OPEN = 1; // further entries of a list are folded, under what they are

function foldable(at, value, element, remove) {
  const texts = Object.values(value ?? {}).filter((one) => typeof one === 'string' && one !== '').slice(0, 3);
  return el('details', { class: 'entry-row', open: value === undefined || at < MOST_OPEN },
    el('summary', {}, [`${at + 1}`, ...texts].join(' · ')), element, remove);
}

function listControl(own, context) {
  let entries = [];
  let known = context.required; // an empty list is a value, too, once it is known to be one
  const list = el('div', { class: 'list' });
  const add = el('button', { type: 'button', onclick: () => {
    known = true;
    append(undefined);
    list.lastElementChild.querySelector('input, select')?.focus();
  } }, 'Add an entry');
  const wrong = el('p', { class: 'wrong', hidden: true });
  const most = own.maxItems === undefined ? '' : ` At most ${own.maxItems}.`;

  function draw() {
    const values = entries.map((entry) => entry.value());
    fill(values);
  }
  function append(value) {
    const at = entries.length;
    const entry = control(own.items ?? {}, { ...context, name: at, path: [...context.path, at], required: true, twin: resolve(context.twin ?? {}, context.document).items });
    entry.fill(value);
    entries.push(entry);
    const remove = el('button', { type: 'button', class: 'quiet', 'aria-label': `Remove entry ${at + 1} of ${inWords(context.name)}`, onclick: () => {
      entries.splice(at, 1);
      draw();
      add.focus();
    } }, 'Remove');
    list.append(foldable(at, value, entry.element, remove));
  }
  function fill(values) {
    entries = [];
    list.replaceChildren();
    for (const value of values ?? []) append(value);
  }
  return {
    element: el('fieldset', { 'data-name': context.path.join('.') }, el('legend', {}, inWords(context.name), ' ', el('code', {}, context.name)),
      el('p', { class: 'help' }, `A list; the router takes it as it stands here.${most}`), list, wrong, add),
    value: () => (entries.length === 0 && !known ? undefined : entries.map((entry) => entry.value() ?? {})),
    fill(values) {
      known = values !== undefined;
      fill(values);
    },
    mark(problems) {
      const mine = problems.find((problem) => problem.path.join('/') === context.path.join('/'));
      wrong.hidden = !mine;
      wrong.textContent = mine?.text ?? '';
      for (const { path } of problems) {
        const folded = path.length > context.path.length && path.join('/').startsWith(context.path.join('/')) ? list.children[path[context.path.length]] : undefined;
        if (folded) folded.open = true;
      }
      return [...(mine ? [{ input: add, name: context.name, text: mine.text }] : []), ...entries.flatMap((entry) => entry.mark(problems))];
    },
  };
}

// A form for a request's body: {element, value(), fill(value), mark(problems)}.
export function formFor(schema, document, twin) {
  return control(schema, { document, name: '', path: [], required: true, twin });
}
