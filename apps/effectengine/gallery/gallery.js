"use strict";
(() => {
const data = JSON.parse(document.getElementById("data").textContent);
const effects = data.effects;
const byName = new Map(effects.map(effect => [effect.name, effect]));
const find = id => document.getElementById(id);
const common = new Set(data.common);
const ownParameters = effect => effect.parameters.filter(parameter => !common.has(parameter.name));
const still = matchMedia("(prefers-reduced-motion: reduce)");
const root = document.documentElement;
root.style.setProperty("--shape", `${data.cell.width} / ${data.cell.height}`);
root.style.setProperty("--rate", data.loop.rate);

// An element with attributes and children; texts stay texts.
function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value !== undefined && value !== false)
      element.setAttribute(name, value === true ? "" : value);
  }
  element.append(...children);
  return element;
}

const path = file => "pictures/" + encodeURIComponent(file);

function strip(file, cells, cell, label) {
  const element = make("span", label ? {class: "strip", role: "img", "aria-label": label} : {class: "strip"});
  element.style.backgroundImage = `url("${path(file)}")`;
  element.style.setProperty("--cells", cells);
  element.style.setProperty("--cell", cell);
  return element;
}

function loop(effect, label) {
  const element = strip(effect.pictures.loop, data.loop.frames, 0, label);
  element.classList.add("playing");
  element.classList.toggle("there", effect.inputs > 1);
  return element;
}

// ---- Cards ----

function card(effect) {
  const picture = make("span", {class: "picture"});
  if (effect.pictures.small)
    picture.append(make("img", {src: path(effect.pictures.small), alt: "", loading: "lazy", decoding: "async",
      width: data.cell.width, height: data.cell.height}));
  else
    picture.append(make("span", {class: "missing"}, "could not be made here"));
  if (effect.pictures.loop)
    picture.append(make("span", {class: "badge"}, effect.inputs > 1 ? "transition" : "moves"));
  const link = make("a", {class: "card", href: "#" + effect.name}, picture,
    make("span", {class: "words"}, make("strong", {}, effect.title), make("span", {}, effect.summary)));
  if (effect.pictures.loop) {
    const play = on => {
      const playing = picture.querySelector(".strip");
      if (on && !playing && !still.matches)
        picture.querySelector("img").after(loop(effect));
      else if (!on && playing)
        playing.remove();
    };
    const settle = () => play(link.matches(":hover, :focus-visible") || (find("play").checked && link.inView));
    for (const event of ["pointerenter", "pointerleave", "focus", "blur"])
      link.addEventListener(event, settle);
    link.settle = settle;
    watcher.observe(link);
  }
  const item = make("li", {}, link);
  effect.item = item;
  effect.words = [effect.name, effect.title, effect.summary, effect.guid, effect.family,
    ...ownParameters(effect).flatMap(parameter => [parameter.title, parameter.name])].join("\n").toLowerCase();
  return item;
}

const watcher = new IntersectionObserver(entries => {
  for (const entry of entries) {
    entry.target.inView = entry.isIntersecting;
    entry.target.settle();
  }
});

find("play").addEventListener("change", () => {
  for (const effect of effects)
    effect.item.firstChild.settle?.();
});
find("play").closest("label").hidden = still.matches || !effects.some(effect => effect.pictures.loop);

// ---- Search and families ----

let family = "";
let shown = effects;

function filter() {
  const wanted = find("search").value.toLowerCase().split(/\s+/).filter(word => word);
  const matches = effects.filter(effect => wanted.every(word => effect.words.includes(word)));
  shown = matches.filter(effect => !family || effect.family === family);
  const visible = new Set(shown);
  for (const effect of effects)
    effect.item.hidden = !visible.has(effect);
  for (const button of find("families").children) {
    const name = button.dataset.family;
    button.setAttribute("aria-pressed", String(name === family));
    button.lastChild.textContent = matches.filter(effect => !name || effect.family === name).length;
  }
  find("count").textContent = shown.length === 0 ? "No effect matches."
    : shown.length === 1 ? "1 effect" : `${shown.length} effects`;
}

for (const name of ["", ...new Set(effects.map(effect => effect.family))]) {
  const button = make("button", {type: "button", "data-family": name}, (name || "all") + " ", make("small"));
  button.addEventListener("click", () => {
    family = name;
    filter();
  });
  find("families").append(button);
}
find("search").addEventListener("input", filter);

// ---- One effect ----

const historyText = effect => ({
  "none": "this frame alone",
  "frames": `this frame and up to ${effect.historyFrames} before it`,
  "from-start": "every frame since the first",
})[effect.history];
const alphaText = {kept: "kept", opaque: "becomes opaque", computed: "computed"};

// The values that an effect without defaults is shown with, and the ones chosen.
function settings(effect, chosen = {}) {
  const values = {};
  for (const parameter of ownParameters(effect)) {
    if (parameter.example !== undefined)
      values[parameter.name] = effect.pictures.examples[parameter.name];
    else if (parameter.type === "file")
      values[parameter.name] = "FILE";
  }
  return Object.entries({...values, ...chosen}).map(([name, value]) => ` -p ${name}=${value}`).join("");
}

// The command line that makes the picture that is shown, at a size that suits lengths in pixels.
function command(effect, chosen) {
  const values = settings(effect, chosen);
  const size = ownParameters(effect).some(parameter => parameter.unit === "pixels")
    ? ` --size ${data.size.width}x${data.size.height}` : "";
  if (effect.inputs > 1) {
    return values ? `effectengine apply ${effect.name}${values} from.jpg --with to.jpg out.png --time 2.2`
      : `effectengine transition ${effect.name} from.jpg to.jpg out.png`;
  }
  if (effect.history !== "none")
    return `effectengine video in.mp4 out.mp4 -e ${effect.name}${values}${size}`;
  return `effectengine apply ${effect.name}${values} in.jpg out.png${size}`
    + (effect.pictures.loop ? ` --time ${data.moment} --total ${data.duration}` : "");
}

function facts(effect) {
  const list = make("dl");
  const add = (name, value) => list.append(make("dt", {}, name), make("dd", {}, value));
  add("Name", effect.name);
  add("GUID", effect.guid);
  add("Family", effect.family);
  add("Pictures in", String(effect.inputs));
  add("Depends on", historyText(effect));
  add("Shown at", `${data.size.width} \u00d7 ${data.size.height} pixels`);
  add("Alpha", alphaText[effect.alpha] ?? effect.alpha);
  if (effect.random)
    add("Random", "yes; --seed repeats a result");
  if (effect.needsGpu)
    add("Needs", "the GPU");
  return list;
}

function describe(effect, parameter) {
  const unit = parameter.unit ? ` ${parameter.unit}` : "";
  const known = parameter.default ?? effect.pictures.examples[parameter.name];
  const label = parameter.values?.find(choice => choice.value === known)?.name;
  const standard = known === undefined ? ""
    : `; ${parameter.default == null ? "shown with" : "default"} ${label ?? known + unit}`;
  const range = parameter.advised && !parameter.values ? `; ${parameter.advised.join(" to ")}${unit}` : "";
  return parameter.help + range + standard;
}

// Views of the stage, the picture in large: name, alternative text, element.
function views(effect) {
  const pictures = effect.pictures;
  const image = (file, alt) => () => make("img", {src: path(file), alt});
  const list = [["Result", image(pictures.still, `The picture after ${effect.title}`)]];
  if (pictures.loop)
    list.push(["Loop", () => loop(effect, `${effect.title} in motion`)]);
  list.push([effect.inputs > 1 ? "First picture" : "Original", image(data.original, "The picture without effect")]);
  if (effect.inputs > 1)
    list.push(["Second picture", image(data.second, "The second picture")]);
  return list;
}

function detail(effect) {
  const picture = make("span", {class: "picture"});
  const buttons = make("div", {class: "views", role: "group", "aria-label": "Show"});
  const text = make("pre", {tabindex: "0", "aria-label": "Command line"}, command(effect));
  const stepButtons = [];
  const show = (element, button, chosen) => {
    picture.replaceChildren(element);
    for (const other of [...buttons.children, ...stepButtons])
      other.setAttribute("aria-pressed", String(other === button));
    text.textContent = command(effect, chosen);
  };
  const body = make("div");
  if (effect.pictures.still) {
    for (const [name, element] of views(effect)) {
      const button = make("button", {type: "button"}, name);
      button.addEventListener("click", () => show(element(), button));
      buttons.append(button);
    }
  }
  body.append(make("div", {class: "top"},
    make("figure", {class: "stage"}, picture, buttons),
    make("div", {}, make("p", {}, effect.summary), facts(effect), text)));
  for (const parameter of ownParameters(effect)) {
    const name = parameter.name === parameter.title ? [] : [" ", make("code", {}, parameter.name)];
    body.append(make("h3", {}, parameter.title, ...name), make("p", {}, describe(effect, parameter)),
      sweep(parameter));
  }
  const first = buttons.children[effect.pictures.loop && !still.matches ? 1 : 0];
  first?.click();
  return body;

  function sweep(parameter) {
    const found = effect.pictures.sweeps.find(candidate => candidate.name === parameter.name);
    if (!found)
      return "";
    const steps = make("div", {class: "steps", role: "group", "aria-label": parameter.title});
    found.labels.forEach((label, i) => {
      const cells = found.labels.length;
      const button = make("button", {type: "button", "aria-pressed": "false"},
        strip(found.file, cells, i), label);
      button.addEventListener("click", () => show(
        strip(found.file, cells, i, `${effect.title}, ${parameter.title} ${label}`), button,
        {[parameter.name]: found.values[i]}));
      stepButtons.push(button);
      steps.append(button);
    });
    return steps;
  }
}

const dialog = find("detail");

// The address names the effect, so that links lead to it and "back" closes it.
function follow() {
  const effect = byName.get(decodeURIComponent(location.hash.slice(1)));
  if (!effect) {
    dialog.close();
    return;
  }
  dialog.effect = effect;
  find("detail-title").textContent = effect.title;
  find("detail-body").replaceChildren(detail(effect));
  const alone = shown.length < 2 && shown.includes(effect);
  find("previous").disabled = find("next").disabled = alone || shown.length === 0;
  if (!dialog.open)
    dialog.showModal();
  dialog.scrollTop = 0;
}

function step(by) {
  if (find("next").disabled)
    return;
  const at = shown.indexOf(dialog.effect);
  const next = shown[(Math.max(at, 0) + by + shown.length) % shown.length];
  history.replaceState(null, "", "#" + next.name);
  follow();
}

find("previous").addEventListener("click", () => step(-1));
find("next").addEventListener("click", () => step(1));
find("close").addEventListener("click", () => dialog.close());
dialog.addEventListener("click", event => {
  if (event.target === dialog)
    dialog.close();
});
dialog.addEventListener("close", () => {
  find("detail-body").replaceChildren();
  if (location.hash)
    history.replaceState(null, "", location.pathname + location.search);
  dialog.effect?.item.firstChild.focus();
});
dialog.addEventListener("keydown", event => {
  if (event.key === "ArrowLeft" || event.key === "ArrowRight") {
    event.preventDefault();
    step(event.key === "ArrowLeft" ? -1 : 1);
  }
});
document.addEventListener("keydown", event => {
  if (event.key === "/" && !dialog.open && document.activeElement !== find("search")) {
    event.preventDefault();
    find("search").focus();
  }
});
addEventListener("hashchange", follow);

find("cards").append(...effects.map(card));
filter();
follow();
})();
