# SPDX-License-Identifier: GPL-3.0-or-later
"""What the check of each host shares: one line per finding, a scratch home, and programs run with a time limit."""
import os
import subprocess
import sys

failures = 0


def check(holds, what):
    global failures
    print(("  ok      " if holds else "  FAILED  ") + what, flush=True)
    failures += 0 if holds else 1
    return holds


def finish():
    sys.exit(1 if failures else 0)


def home(folder, settings):
    """An environment in which host and plug-in find nothing but what the check puts there. `settings` are the plug-in's
    defaults for new instances."""
    # Without a DISPLAY the plug-in's windowing library would join whatever screen :0 is, and end with it.
    environment = dict(os.environ, HOME=folder, DISPLAY=":65000")
    for variable, below in (("XDG_CONFIG_HOME", ".config"), ("XDG_CACHE_HOME", ".cache"), ("XDG_DATA_HOME", ".local/share")):
        environment[variable] = os.path.join(folder, below)
        os.makedirs(environment[variable], exist_ok=True)

    own = os.path.join(environment["XDG_CONFIG_HOME"], "Tarvik Plugins")
    os.makedirs(own, exist_ok=True)
    with open(os.path.join(own, "Tarvik 41 Channel.settings"), "w") as file:
        values = "".join(f'<VALUE name="{key}" val="{value}"/>' for key, value in settings.items())
        file.write(f"<PROPERTIES>{values}</PROPERTIES>\n")
    return environment


def run(command, environment, seconds=180):
    """What the command printed, or None after a failure, which is counted and shown."""
    try:
        done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=seconds, text=True, errors="replace")
    except subprocess.TimeoutExpired:
        check(False, f"{command[0]} ended within {seconds} s")
        return None
    if done.returncode != 0:
        print(done.stdout)
        check(False, f"{command[0]} ended with status {done.returncode}")
        return None
    return done.stdout


def render(renderer, module, source, target, environment, options=()):
    """Our own offline host on the same module, as the reference."""
    run([renderer, "--module", module, *options, source, target], environment)
