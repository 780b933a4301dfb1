// Keeps the page up to date: asks for the revision, and where it changed takes over what is new.
"use strict";

const pauses = { usual: 1000, longest: 10000, news: 6000 };
const live = document.getElementById("live");
const sources = new WeakMap();
let revision = document.body.dataset.revision;
let pause = pauses.usual;
let timer = 0;
let silence = 0;

const regions = (root) => new Map(
  [...root.querySelectorAll("[data-live]")].map((node) => [node.dataset.live, node]));

// What a node was received as; what the browser and its user did to it since does not count.
const sourceOf = (node) => {
  if (!sources.has(node)) sources.set(node, node.outerHTML);
  return sources.get(node);
};

function remember(root) {
  for (const node of root.querySelectorAll("[data-live], [data-key]")) sourceOf(node);
}

// Shown and read out; news are gone after a while.
function say(text, lasts = false) {
  clearTimeout(silence);
  if (live.textContent !== text) live.textContent = text;
  if (!lasts) silence = setTimeout(() => { live.textContent = ""; }, pauses.news);
}

// Puts the fresh rows in their places and leaves those alone that stay the same, so that a video
// plays on and what is open stays open. Returns how many are new.
function takeRows(list, fresh) {
  const wanted = new Set([...fresh.children].map((row) => row.dataset.key));
  for (const row of [...list.children]) {
    if (!wanted.has(row.dataset.key)) row.remove();
  }
  const known = new Map([...list.children].map((row) => [row.dataset.key, row]));
  const focused = document.activeElement?.closest("[data-key]")?.dataset.key;
  let added = 0;
  let place = list.firstElementChild;
  for (const row of [...fresh.children]) {
    const old = known.get(row.dataset.key);
    if (!old) added += 1;
    const keep = old && sourceOf(old) === sourceOf(row) ? old : row;
    if (keep === place) {
      place = place.nextElementSibling;
      continue;
    }
    if (old && old !== keep) {
      if (old === place) place = place.nextElementSibling;
      old.remove();
    }
    list.insertBefore(keep, place);
    if (keep === row && row.dataset.key === focused) row.querySelector("a")?.focus();
  }
  return added;
}

function takeRegion(old, fresh) {
  if (sourceOf(old) === sourceOf(fresh)) return 0;
  const list = old.querySelector("[data-rows]");
  const freshList = fresh.querySelector("[data-rows]");
  if (!list || !freshList) {
    old.replaceWith(fresh);
    return freshList ? freshList.children.length : 0;
  }
  const added = takeRows(list, freshList);
  const takeBeside = (selector, add) => {
    const before = old.querySelector(selector);
    const after = fresh.querySelector(selector);
    if (before && after) before.replaceWith(after);
    else if (before) before.remove();
    else if (after) add(after);
  };
  takeBeside(".strays", (node) => old.prepend(node));
  takeBeside(".paging", (node) => old.append(node));
  sources.set(old, sourceOf(fresh));
  return added;
}

async function refresh() {
  const answer = await fetch(location.href, { headers: { Accept: "text/html" } });
  const fresh = new DOMParser().parseFromString(await answer.text(), "text/html");
  remember(fresh);
  const nav = document.querySelector("nav");
  const freshNav = fresh.querySelector("nav");
  if (nav.innerHTML !== freshNav.innerHTML) nav.replaceChildren(...freshNav.childNodes);
  const here = regions(document);
  const there = regions(fresh);
  if (there.has("notice") && !here.has("notice")) {
    document.querySelector("main").replaceChildren(...fresh.querySelector("main").childNodes);
    say("This is gone");
  } else {
    let added = 0;
    for (const [name, node] of there) {
      if (here.has(name)) added += takeRegion(here.get(name), node);
    }
    if (added > 0) say(added === 1 ? "1 new entry" : `${added} new entries`);
  }
  revision = fresh.body.dataset.revision;
}

async function look() {
  try {
    const answer = await fetch("/console/revision");
    if (!answer.ok) throw new Error(String(answer.status));
    if (pause !== pauses.usual) say("Connected again");
    pause = pauses.usual;
    document.body.classList.remove("lost");
    if ((await answer.text()) !== revision) await refresh();
  } catch {
    pause = Math.min(pause * 2, pauses.longest);
    document.body.classList.add("lost");
    say("The sandbox does not answer", true);
  }
  schedule();
}

// A page that answers a form has no revision: asked for again it would be another.
function schedule() {
  clearTimeout(timer);
  if (!document.hidden && revision) timer = setTimeout(look, pause);
}

// A fault of the whole listener takes neither a step nor a number of times.
function followChoice() {
  const narrow = document.getElementById("narrow");
  if (!narrow) return;
  const form = narrow.closest("form");
  const follow = () => {
    const chosen = form.querySelector("input[name=fault]:checked");
    narrow.disabled = chosen !== null && chosen.hasAttribute("data-whole");
    document.getElementById("whole").hidden = !narrow.disabled;
    document.getElementById("status").disabled =
      chosen !== null && !chosen.value.includes("NUMBER");
  };
  form.addEventListener("change", follow);
  follow();
}

remember(document);
followChoice();
document.addEventListener("visibilitychange", schedule);
schedule();
