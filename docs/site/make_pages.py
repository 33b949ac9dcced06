"""make_pages.py BUILD_DIR SITE_DIR: the pages that Doxygen reads, and the list of its inputs.

Copies docs/, with a name for each page and with the tables of keys that a page asks for by

    <!-- keys: clock_tree.schema.json -->

and writes the pages that come from the program: its words, and what Tcl and Python see.
"""

import ast
import html
import importlib
import inspect
import json
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


# --- tables of keys, from the JSON schemas ---------------------------------------------------------

# What a key counts, by the last word of its name.
UNITS = {
    **dict.fromkeys(("mhz",), "MHz"),
    **dict.fromkeys(("percent",), "%"),
    **dict.fromkeys(("ppm",), "ppm"),
    **dict.fromkeys(("width",), "bits"),
    **dict.fromkeys(("base", "end", "start", "size", "range", "offset", "address", "addr"), "bytes"),
}


def cell(text):
    return html.escape(str(text), quote=False).replace("|", "&#124;").replace("\n", " ")


def unit_of(path, node):
    """Numbers and texts of numbers have units."""
    words = path.rsplit(".", 1)[-1].lower().split("_")
    if words[0] == "bit" and len(words) > 1:
        return "bits"
    is_number = {"number", "integer", "string"} & set(types_of(node))
    return UNITS.get(words[-1], "") if is_number else ""


def types_of(node):
    kind = node.get("type", [])
    return [kind] if isinstance(kind, str) else kind


class KeyTable:
    """The keys of one schema, in its order. What is defined once and used again is shown once."""

    def __init__(self, name):
        self.schema = json.loads((ROOT / "schemas" / name).read_text())
        self.name = name
        self.rows = {}  # by path
        self.shown = {}  # paths of definitions
        self.lacking = []
        self.walk(self.schema, "")

    def resolved(self, node):
        """The node and the name of the definition that it is, or None."""
        reference = node.get("$ref")
        if reference is None:
            return node, None
        target = self.schema
        for part in reference.removeprefix("#/").split("/"):
            target = target[part]
        target, _ = self.resolved(target)
        return {**target, **{key: value for key, value in node.items() if key != "$ref"}}, reference

    def kind(self, node):
        """A key's type and bounds in words."""
        if "const" in node:
            return "`" + json.dumps(node["const"]) + "`"
        if "enum" in node:
            return ", ".join("`" + json.dumps(value) + "`" for value in node["enum"])
        words = [self.array_kind(node) if one == "array" else one for one in types_of(node)]
        for several in ("anyOf", "oneOf"):
            if not words:
                words = [self.kind(self.resolved(one)[0]) for one in node.get(several, [])]
        bounds = [
            f"{sign} {node[word]}"
            for word, sign in (
                ("minimum", "≥"),
                ("exclusiveMinimum", "&gt;"),
                ("maximum", "≤"),
                ("exclusiveMaximum", "&lt;"),
            )
            if word in node
        ]
        if node.get("minLength"):
            bounds.append("not empty")
        return ", ".join([" or ".join(dict.fromkeys(words)) or "any", *bounds])

    def array_kind(self, node):
        items = self.resolved(node.get("items", {}))[0]
        kinds = [one + "s" for one in types_of(items)]
        return "array of " + " or ".join(kinds) if kinds else "array"

    def walk(self, node, path):
        """Adds the keys below a node."""
        node, reference = self.resolved(node)
        if reference and any(word in node for word in ("properties", "items")):
            if self.shown.setdefault(reference, path) != path:
                return
        for name, child in node.get("properties", {}).items():
            self.add(f"{path}.{name}" if path else name, child, name in node.get("required", []))
        if isinstance(node.get("additionalProperties"), dict):
            self.add(f"{path}.NAME" if path else "NAME", node["additionalProperties"], False)
        if isinstance(node.get("items"), dict):
            self.walk(node["items"], path + "[]")
        for several in ("anyOf", "oneOf", "allOf"):
            for one in node.get(several, []):
                if set(one) & {"$ref", "items", "additionalProperties", "allOf"}:
                    self.walk(one, path)

    def add(self, path, child, is_required):
        if path in self.rows:
            return
        node, _ = self.resolved(child)
        default = "required" if is_required else "none"
        if "default" in node:
            default = "`" + json.dumps(node["default"]) + "`"
        meaning = node.get("description", "")
        if not meaning:
            self.lacking.append(path)
        row = (f"`{path}`", self.kind(node), unit_of(path, node), default, cell(meaning))
        self.rows[path] = row
        self.walk(child, path)
        # Nothing was added below it, as it was shown elsewhere.
        of_items = self.resolved(node.get("items", {}))[1] if "items" in node else None
        earlier = self.shown.get(self.resolved(child)[1]) or self.shown.get(of_items)
        if earlier and earlier.removesuffix("[]") != path:
            meaning = f"{cell(meaning)} Holds the keys of `{earlier}`."
            self.rows[path] = (*row[:4], meaning.strip())

    def text(self):
        if self.lacking:
            sys.exit(f"schemas/{self.name}: no description of " + ", ".join(self.lacking))
        lines = ["| key | type | unit | default | meaning |", "|---|---|---|---|---|"]
        lines += ["| " + " | ".join(row) + " |" for row in self.rows.values()]
        schema = f"[{self.name}](schemas/{self.name})"
        return "\n".join(lines) + (
            f"\n\nThe schema for editors: {schema}, installed below `share/tq_hbs/schemas`."
        )


# --- pages -----------------------------------------------------------------------------------------


def label_of(path):
    """docs/formats/clock_tree.md is named formats_clock_tree, docs/formats/index.md formats."""
    parts = [part for part in path.with_suffix("").parts if part != "index"]
    return "_".join(parts)


# A class or a function in a page becomes a link; Doxygen warns of one that isn't there.
CPP_NAME = re.compile(r"(?<!`)`((?:(?:tq|hbs|hdi|hardblock|hbs_clocking)::(?!hbs)|HABM|HBS)[\w:]+)`(?!`)")


def page_of(path, text):
    label = label_of(path)
    if label:
        text = re.sub(r"^# (.*)$", rf"# \1 {{#{label}}}", text, count=1, flags=re.M)
    text = re.sub(r"<!-- keys: (\S+) -->", lambda match: KeyTable(match[1]).text(), text)
    text = re.sub(r"<!-- file: \S+ -->\n", "", text)
    # What Doxygen has no highlighting for.
    text = re.sub(r"^```(json|sh|tcl|text)$", "```unparsed", text, flags=re.M)
    text = CPP_NAME.sub(r"<code>@ref \1</code>", text)
    text = re.sub(r"\]\((?:\.\./)+(schemas/[\w.]+)\)", r"](\1)", text)
    text = re.sub(r"\]\((?:\.\./)*README\.md\)", "](@ref readme)", text)

    def linked(match):
        target = (ROOT / "docs" / path.parent / match[1]).resolve()
        return "](@ref " + (label_of(target.relative_to(ROOT / "docs")) or "mainpage") + ")"

    return re.sub(r"\]\((?!https?:|@)([\w./-]+\.md)\)", linked, text)


def copy_pages(pages):
    for source in sorted((ROOT / "docs").rglob("*")):
        path = source.relative_to(ROOT / "docs")
        if path.parts[0] == "site" or source.is_dir():
            continue
        target = pages / path
        target.parent.mkdir(parents=True, exist_ok=True)
        if source.suffix == ".md":
            target.write_text(page_of(path, source.read_text()))
        else:
            shutil.copy(source, target)


# --- the words of the program ----------------------------------------------------------------------


def help_of(program, words):
    command = [program, *words, "--help"]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip("\n")


def words_in(text):
    part = text.partition("Subcommands:\n")[2]
    return re.findall(r"^  (\S+)", part, flags=re.M)


def words_page(program):
    overall = help_of(program, [])
    lines = [
        "# The words of hbs {#words}",
        "",
        "Printed by `hbs --help` and `hbs WORD --help`. The exit status is 0 for a result, 1 for none",
        "or for findings, 2 for a command line or a file that can't be used, and 3 for output that",
        "can't be written.",
        "",
        "```unparsed",
        overall,
        "```",
    ]

    def add(words):
        text = help_of(program, words)
        name = "-".join(words)
        lines.extend(["", f"## hbs {' '.join(words)} {{#word-{name}}}", "", "```unparsed", text, "```"])
        for word in words_in(text):
            add([*words, word])

    for word in words_in(overall):
        add([word])
    return "\n".join(lines) + "\n"


# --- what Python sees ------------------------------------------------------------------------------


def signature(node):
    """A function of the stubs as it is called."""
    arguments = ast.unparse(node.args)
    result = f" -> {ast.unparse(node.returns)}" if node.returns else ""
    return f"{node.name}({arguments}){result}"


def member_rows(body):
    settable = {node.name for node in body if isinstance(node, ast.FunctionDef)
                and any(isinstance(mark, ast.Attribute) for mark in node.decorator_list)}
    for node in body:
        if isinstance(node, ast.AnnAssign):
            yield f"{node.target.id}: {ast.unparse(node.annotation)}", ""
        if not isinstance(node, ast.FunctionDef):
            continue
        marks = [mark for mark in node.decorator_list]
        if any(isinstance(mark, ast.Attribute) for mark in marks):
            continue  # the setter of a property
        said = ast.get_docstring(node) or ""
        if any(isinstance(mark, ast.Name) and mark.id == "property" for mark in marks):
            access = "" if node.name in settable else " (read only)"
            yield f"{node.name}: {ast.unparse(node.returns)}{access}", said
        else:
            yield signature(node), said


def saying_of(node):
    """The docstring of a function or a class, which some have in the package alone."""
    native = importlib.import_module("tq_hbs")
    return ast.get_docstring(node) or inspect.getdoc(getattr(native, node.name)) or ""


def python_page(stubs):
    tree = ast.parse(stubs.read_text())
    lines = [
        "# Python, by name {#python}",
        "",
        "Made from the docstrings of the package. [Tcl and Python](@ref scripting) tells how handles,",
        "calls and errors work.",
    ]

    def table(rows):
        rows = list(rows)
        if rows:
            lines.extend(["", "| name | what it is |", "|---|---|"])
            lines.extend(f"| {cell_code(name)} | {cell(said)} |" for name, said in rows)

    classes = [node for node in tree.body if isinstance(node, ast.ClassDef)]
    records = [node for node in classes if any("TypedDict" == ast.unparse(b) for b in node.bases)]
    lines.extend(["", "## Functions {#python-functions}"])
    table((signature(node), saying_of(node))
          for node in tree.body if isinstance(node, ast.FunctionDef))
    for node in classes:
        if node in records:
            continue
        said = cell(saying_of(node))
        lines.extend(["", f"## {node.name} {{#python-{node.name}}}", "", said])
        if node.bases:
            lines.append("\nA subclass of " + ", ".join(f"`{ast.unparse(b)}`" for b in node.bases) + ".")
        table(member_rows(node.body))
    lines.extend(["", "## Records {#python-records}", "", "Dictionaries that functions give."])
    for node in records:
        lines.extend(["", f"### {node.name} {{#python-record-{node.name}}}"])
        table(member_rows(node.body))
    return "\n".join(lines) + "\n"


def cell_code(text):
    # A bar would end the cell of a table.
    return "<code>" + cell(text.replace(" | ", " or ")) + "</code>"


# --- what Tcl sees ---------------------------------------------------------------------------------


# A line of each command: its group, a tab, and its usage. Without arguments, a command that needs some
# says what it takes.
TCL_DUMP = r"""
package require tq_hbs
proc walk {words} {
    set group [lrange $words 0 end-1]
    set name ::[join $words ::]
    if {[namespace exists $name] && [namespace ensemble exists $name]} {
        foreach command [lsort [info commands ${name}::*]] {
            walk [concat $words [namespace tail $command]]
        }
    } elseif {[catch {{*}$words} said]} {
        puts "$group\t[regsub {^wrong # args: should be "(.*)"$} $said {\1}]"
    } else {
        puts "$group\t$words"
    }
}
foreach command [lsort [info commands ::tq::*]] {
    walk [list tq::[namespace tail $command]]
}
"""


def tcl_groups(build):
    """The usages of the commands, by what stands before the last word of their names."""
    dumped = subprocess.run(
        ["tclsh8.6"],
        input=TCL_DUMP,
        env={"TCLLIBPATH": str(build / "tcl"), "PATH": "/usr/bin:/bin"},
        check=True,
        capture_output=True,
        text=True,
    ).stdout
    groups = {}
    for line in dumped.splitlines():
        group, usage = line.split("\t")
        groups.setdefault(group or "tq", []).append(usage)
    return groups


def sayings_of(stubs):
    """What the docstrings say, by class and member; functions stand under an empty class."""
    sayings = {"": {}}
    for node in ast.parse(stubs.read_text()).body:
        if isinstance(node, ast.FunctionDef):
            sayings[""][node.name] = saying_of(node)
        elif isinstance(node, ast.ClassDef):
            sayings[node.name] = {
                one.name: ast.get_docstring(one)
                for one in node.body
                if isinstance(one, ast.FunctionDef) and ast.get_docstring(one)
            }
    return sayings


def tcl_page(build, stubs):
    sayings = sayings_of(stubs)
    lines = [
        "# Tcl, by name {#tcl}",
        "",
        "The commands of the package, with what they take. Classes and members have the names that",
        "they have in [Python](@ref python), where records are described, too.",
        "[Tcl and Python](@ref scripting) tells how handles, calls and errors work.",
    ]
    for number, (group, usages) in enumerate(tcl_groups(build).items()):
        members = {usage: usage.removeprefix(group + " ").split()[0] for usage in usages}
        # The class that has most of the group's members; functions stand under an empty name.
        said = max(sayings.values(), key=lambda of_class: len(set(of_class) & set(members.values())))
        lines.extend(["", f"## {group} {{#tcl-{number}}}", ""])
        lines.extend(["| command | what it does |", "|---|---|"])
        for usage, member in members.items():
            saying = said.get("__new__" if member == "create" else member, "")
            lines.append(f"| {cell_code(usage)} | {cell(saying)} |")
    return "\n".join(lines) + "\n"


# --- what Doxygen is given -------------------------------------------------------------------------


def write_inputs(site, build):
    headers = (build / "generated" / "public_headers.txt").read_text().split()
    inputs = [*sorted(str(path) for path in (site / "pages").rglob("*.md")), *headers]
    version = re.search(r'TQ_VERSION_STRING "(.*)"', (build / "generated" / "tq_version.h").read_text())
    lines = [f"PROJECT_NUMBER = {version[1]}", f"STRIP_FROM_PATH = {ROOT} {site / 'pages'}"]
    lines += [f"STRIP_FROM_INC_PATH = {ROOT}"]
    lines += [f"INPUT += {path}" for path in inputs]
    (site / "inputs").write_text("\n".join(lines) + "\n")


def main():
    build, site = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
    pages = site / "pages"
    sys.path.insert(0, str(build / "python"))
    shutil.rmtree(site, ignore_errors=True)
    pages.mkdir(parents=True)
    copy_pages(pages)
    stubs = build / "python" / "tq_hbs" / "_native.pyi"
    (pages / "words.md").write_text(words_page(build / "bin" / "hbs"))
    (pages / "python.md").write_text(python_page(stubs))
    (pages / "tcl.md").write_text(tcl_page(build, stubs))
    shutil.copytree(ROOT / "schemas", site / "html" / "schemas")
    write_inputs(site, build)


main()
