# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The IDE in another language, with the translations of a build."""

import pathlib
import shutil


def ide_that_speaks(language, build, directory):
    """The IDE looks for translations in its own directory only, so this makes another IDE with ours added: a program
    of its own beside links to everything else. Returns the program; the settings choose the language."""
    installed = pathlib.Path(shutil.which("qtcreator")).resolve()
    original = installed.parents[1] / "share/qtcreator"
    share = directory / "share/qtcreator"
    share.mkdir(parents=True)
    for entry in original.iterdir():
        if entry.name != "translations":
            (share / entry.name).symlink_to(entry)
    translations = shutil.copytree(original / "translations", share / "translations")
    shutil.copy(build / f"translations/Varnel_{language}.qm", translations)
    # The IDE speaks a language only if there is a file of Qt's own texts for it, whatever is in that.
    shutil.copy(translations / f"qtcreator_{language}.qm", translations / f"qt_{language}.qm")
    for name in ("lib", "libexec"):
        (directory / name).symlink_to(installed.parents[1] / name)
    (directory / "bin").mkdir()
    return shutil.copy(installed, directory / "bin")
