"""Settings of the site, for Sphinx; scripts/site lays the pages out and runs it."""

import os
import pathlib
import re

project = "KARMPEntities"
version = release = os.environ["KARMP_VERSION"]
extensions = ["myst_parser"]
source_suffix = {".md": "markdown"}
exclude_patterns = ["Examples", "Python", "tests"]
myst_heading_anchors = 4
highlight_language = "none"

html_theme = "furo"
html_title = f"KARMPEntities {version}"
html_show_copyright = False
html_show_sourcelink = False
html_copy_source = False
# The colours of the pages that "karmp view" writes.
html_theme_options = {
    "light_css_variables": {"color-brand-primary": "#d9480f", "color-brand-content": "#d9480f"},
    "dark_css_variables": {"color-brand-primary": "#ffa94d", "color-brand-content": "#ffa94d"},
}

LINK = re.compile(r"(?<!!)\[([^\]]+)\]\(([^)#:]+)\)")


def without_folders(app, name, text):
    """Files are offered for download, but a link to a folder leads nowhere on a site."""
    page = pathlib.Path(app.srcdir, name)

    def link(match):
        return match[1] if (page.parent / match[2]).is_dir() else match[0]

    text[0] = LINK.sub(link, text[0])


def setup(app):
    app.connect("source-read", without_folders)
