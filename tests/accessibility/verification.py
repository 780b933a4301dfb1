"""A verification by actions of assistive technology alone, and what a screen reader says meanwhile.

usage: verification.py OUT HOST [ARGUMENT...]

The reader speaks as common ones do: at a focus event the dialogs or alerts that the focus has come
into, with their texts, then the object; at a notification its text.
"""
import subprocess
import sys
import time

import pyatspi
from gi.repository import GLib

DEADLINE = 20
DESK = "I would rather go to the front desk"
# Raised for an object that has gone meanwhile; ValueError by its number of children, -1.
GONE = (GLib.Error, LookupError, RuntimeError, ValueError)
spoken = []
focused = None


def actions(accessible):
    try:
        action = accessible.queryAction()
    except NotImplementedError:
        return {}
    return {action.getName(i): (lambda i=i: action.doAction(i)) for i in range(action.nActions)}


def has(accessible, state):
    return accessible.getState().contains(state)


def walk(accessible):
    yield accessible
    if accessible.getRole() != pyatspi.ROLE_LIST:
        for child in list(accessible):
            if child:
                yield from walk(child)


def ancestors(accessible):
    found = []
    while accessible and accessible.getRole() != pyatspi.ROLE_APPLICATION:
        accessible = accessible.parent
        found.append(accessible)
    return found


def describe(accessible):
    text = f"{accessible.name} {accessible.getRoleName()}"
    if has(accessible, pyatspi.STATE_EXPANDABLE):
        text += " expanded" if has(accessible, pyatspi.STATE_EXPANDED) else " collapsed"
    if accessible.getRole() in (pyatspi.ROLE_DIALOG, pyatspi.ROLE_ALERT):
        labels = [each.name for each in walk(accessible) if each.getRole() == pyatspi.ROLE_LABEL]
        return ". ".join([text] + labels)
    return f"{text}. {accessible.description}" if accessible.description else text


def on_event(event):
    global focused
    try:
        if event.type.startswith("object:state-changed:showing"):
            if event.detail1 and event.source.getRole() == pyatspi.ROLE_NOTIFICATION:
                spoken.append(event.source.name)
        elif event.detail1 and event.source != focused:
            before = [focused] + ancestors(focused) if focused else []
            focused = event.source
            if focused.getRole() == pyatspi.ROLE_FILLER:
                return
            for each in reversed(ancestors(focused)):
                if each and each not in before and each.getRole() in (
                        pyatspi.ROLE_DIALOG, pyatspi.ROLE_ALERT, pyatspi.ROLE_LIST):
                    spoken.append(describe(each))
            spoken.append(describe(focused))
    except GONE:
        pass  # The object no longer exists.


def handle(seconds=0.05):
    context = GLib.MainContext.default()
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not context.iteration(False):
            time.sleep(0.005)


def wait(what, condition):
    end = time.monotonic() + DEADLINE
    while time.monotonic() < end:
        handle()
        try:
            found = condition()
        except GONE:
            continue
        if found:
            return found
    sys.exit(f"timed out waiting for {what}; spoken: {spoken}")


def find(role, name):
    for application in pyatspi.Registry.getDesktop(0):
        for each in walk(application) if application else []:
            if each.getRole() == role and each.name == name:
                return each
    return None


def press(name):
    wait(f"the button {name}",
         lambda: (actions(find(pyatspi.ROLE_PUSH_BUTTON, name)).get("Press") or (lambda: 0))())


def heard(text, begin=0):
    wait(f"the words {text}", lambda: any(text in each for each in spoken[begin:]))


def arrive(out, heading):
    """Waits for the screen, then writes what was said since the last one."""
    heard(heading + " dialog")
    handle(0.5)
    times = sum(each.startswith(heading + " dialog") for each in spoken)
    if times != 1:
        sys.exit(f"{heading} was said {times} times: {spoken}")
    out.write(f"== {heading}\n" + "".join(f"{each}\n" for each in spoken) + "\n")
    spoken.clear()


def verify(out):
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "Check in",
                    "windowfocus"], timeout=DEADLINE, check=True)
    handle(0.5)
    desk = wait("the host's button", lambda: find(pyatspi.ROLE_PUSH_BUTTON, DESK))
    start = wait("the host's button", lambda: find(pyatspi.ROLE_PUSH_BUTTON,
                                                   "Verify with Kestrova"))
    press("Verify with Kestrova")
    arrive(out, "What’s your nationality?")

    # The host cannot be reached, not even through objects obtained earlier.
    if find(pyatspi.ROLE_PUSH_BUTTON, DESK):
        sys.exit("the host is offered below the flow")
    for remembered in (desk, start):
        try:
            for act in actions(remembered).values():
                act()
        except GONE:
            pass
    field = wait("the field", lambda: find(pyatspi.ROLE_TEXT, "Country"))
    actions(field)["SetFocus"]()
    handle(0.5)
    subprocess.run(["xdotool", "type", "--delay", "100", "germ"], timeout=DEADLINE, check=True)
    heard("1 country")
    subprocess.run(["xdotool", "key", "Down"], timeout=DEADLINE, check=True)
    heard("Germany list item")
    subprocess.run(["xdotool", "key", "Return"], timeout=DEADLINE, check=True)
    press("Next")
    arrive(out, "What’s your email address?")

    field = wait("the field", lambda: find(pyatspi.ROLE_TEXT, "Email address"))
    field.queryEditableText().insertText(0, "ada@example.com", 15)
    press("Next")
    arrive(out, "Take a video selfie")
    press("Start")
    heard("Video selfie dialog")
    wait("the engine's steps", lambda: "Turn your head slowly" in spoken)
    arrive(out, "Choose your document")

    documents = wait("the list", lambda: find(pyatspi.ROLE_LIST, "Documents"))
    actions(documents.getChildAtIndex(2))["Press"]()
    press("Next")
    for side in ("front", "back"):
        arrive(out, f"Take a photo of the {side}")
        press("Take photo")
        heard("Camera dialog")
        press("Take photo")
        press("Use photo")
    wait("the end", lambda: find(pyatspi.ROLE_PUSH_BUTTON, "Finish"))
    handle(1)
    out.write("== The end\n" + "".join(f"{each}\n" for each in spoken) + "\n")
    press("Finish")
    wait("the host", lambda: find(pyatspi.ROLE_PUSH_BUTTON, DESK))


def main():
    pyatspi.Registry.registerEventListener(
        on_event, "object:state-changed:focused", "object:state-changed:showing")
    host = subprocess.Popen(sys.argv[2:])
    try:
        with open(sys.argv[1], "w", encoding="utf-8") as out:
            verify(out)
    finally:
        host.kill()
        host.wait()


main()
