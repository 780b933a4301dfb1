"""What a page must be for everybody; each check returns what is wrong, empty where nothing is."""

# Text against the colour behind it, by the formula of WCAG 2; large text may be fainter.
FAINT = """
const canvas = document.createElement("canvas").getContext("2d", { willReadFrequently: true });
const rgba = (colour) => {
  canvas.clearRect(0, 0, 1, 1); canvas.fillStyle = colour; canvas.fillRect(0, 0, 1, 1);
  return [...canvas.getImageData(0, 0, 1, 1).data];
};
const light = (c) => { c /= 255; return c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4; };
const luminance = ([r, g, b]) => 0.2126 * light(r) + 0.7152 * light(g) + 0.0722 * light(b);
const ground = (node) => {
  for (; node; node = node.parentElement) {
    const colour = rgba(getComputedStyle(node).backgroundColor);
    if (colour[3] === 255) return colour;
  }
  return [255, 255, 255, 255];
};
const wrong = [];
const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
while (texts.nextNode()) {
  const node = texts.currentNode.parentElement;
  if (!texts.currentNode.data.trim() || !node.checkVisibility() || node.closest(":disabled, option")) continue;
  const style = getComputedStyle(node);
  const [a, b] = [luminance(rgba(style.color)), luminance(ground(node))];
  const ratio = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
  if (ratio < 4.5) wrong.push(ratio.toFixed(2) + " " + texts.currentNode.data.trim().slice(0, 40));
}
return wrong;
"""

STRUCTURE = """
const wrong = [];
const one = (css) => {
  const count = document.querySelectorAll(css).length;
  if (count !== 1) wrong.push(count + " of " + css);
};
for (const css of ["h1", "main", "body > header", "nav[aria-label]", "[role=status]",
                   "a.skip[href='#content']", "nav [aria-current=page]"]) one(css);
if (document.documentElement.lang !== "en") wrong.push("no language");
const ids = [...document.querySelectorAll("[id]")].map((node) => node.id);
if (new Set(ids).size !== ids.length) wrong.push("an id comes twice");
for (const node of document.querySelectorAll("[aria-labelledby], [aria-describedby]")) {
  for (const name of ["aria-labelledby", "aria-describedby"]) {
    const id = node.getAttribute(name);
    if (id && !document.getElementById(id)) wrong.push("nothing has the id " + id);
  }
}
for (const node of document.querySelectorAll("button, .row, select, input:not([type=radio], [type=hidden])")) {
  const box = node.getBoundingClientRect();
  if (node.checkVisibility() && box.height < 44) wrong.push("small: " + node.outerHTML.slice(0, 60));
}
return wrong;
"""

OVERFLOW = """
const width = document.documentElement.clientWidth;
if (document.documentElement.scrollWidth <= width) return [];
return [...document.body.querySelectorAll("*")]
  .filter((node) => node.getBoundingClientRect().right > width + 1)
  .map((node) => node.outerHTML.slice(0, 80));
"""

FOREIGN = """
return performance.getEntriesByType("resource").map((entry) => entry.name)
  .filter((name) => !name.startsWith(location.origin + "/"));
"""

FOCUS = """
const node = document.activeElement;
if (node === document.body) return null;
const shown = [node, node.closest(".choice")].filter(Boolean).some((one) => {
  const style = getComputedStyle(one);
  return style.outlineStyle !== "none" && parseFloat(style.outlineWidth) >= 1;
});
node.dataset.seen = "yes";
return shown || node.tagName === "VIDEO" ? "" : "no focus shows on " + node.outerHTML.slice(0, 80);
"""

# What the keyboard must reach: of radio buttons, one of each group.
UNREACHED = """
const wanted = [...document.querySelectorAll("a[href], button, input:not([type=radio], [type=hidden]), select, summary")]
  .filter((node) => node.checkVisibility() && !node.matches(":disabled"));
return wanted.filter((node) => !node.dataset.seen).map((node) => "not reached: " + node.outerHTML.slice(0, 80));
"""

NAMED_ROLES = {"button", "link", "textbox", "searchbox", "combobox", "radio", "image", "heading",
               "navigation", "Video", "radiogroup"}


def overflow(browser):
    return browser.run(OVERFLOW)


def faint_text(browser):
    return browser.run(FAINT)


def structure(browser):
    return browser.run(STRUCTURE)


def foreign_resources(browser):
    return browser.run(FOREIGN)


def unnamed(browser):
    """What assistive technology would meet without a name."""
    nodes = browser.devtools("Accessibility.getFullAXTree")["nodes"]
    return [node["role"]["value"] for node in nodes
            if not node["ignored"] and node["role"]["value"] in NAMED_ROLES
            and not node.get("name", {}).get("value", "").strip()
            # The brand's mark is decoration.
            and not (node["role"]["value"] == "image" and "brand" in str(node))]


def focus_path(browser):
    """Tabs through the page; what is not reached, and where no focus shows."""
    tab = "\ue004"
    wrong = []
    for _ in range(200):
        browser.press(tab)
        seen = browser.run(FOCUS)
        if seen is None:
            break
        if seen:
            wrong.append(seen)
    return wrong + browser.run(UNREACHED)
