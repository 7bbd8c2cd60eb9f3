"""What the tests of this folder ask of shared libraries, read with binutils."""

import re
import subprocess


def output(*arguments):
    """What a program prints; the test fails if the program does."""
    return subprocess.run(arguments, capture_output=True, text=True, check=True).stdout


def dynamic_entries(library):
    """The dynamic section: a list of values per tag, in its order."""
    entries = {}
    for line in output("readelf", "-dW", library).splitlines():
        match = re.match(r"\s*0x[0-9a-f]+\s+\((\w+)\)\s+(.*)", line)
        if match:
            text = re.sub(r".*\[(.*)\]", r"\1", match.group(2)).strip()
            entries.setdefault(match.group(1), []).append(text)
    return entries


class Symbol:
    """One dynamic symbol; the version is empty where the name has none."""

    def __init__(self, name, bind, size, defined):
        self.name, _, self.version = name.partition("@")
        self.bind, self.size, self.defined = bind, size, defined


def dynamic_symbols(library):
    """All dynamic symbols but the nameless one."""
    symbols = []
    for line in output("readelf", "--dyn-syms", "-W", library).splitlines():
        fields = line.split()
        if len(fields) < 8 or not fields[0].rstrip(":").isdigit():
            continue
        symbols.append(Symbol(fields[7], fields[4], int(fields[2], 0), fields[6] != "UND"))
    return symbols


def exported(library):
    """Names that a library defines for others."""
    return {symbol.name for symbol in dynamic_symbols(library) if symbol.defined}


def undefined(library):
    """Names that a library takes from elsewhere."""
    return {symbol.name for symbol in dynamic_symbols(library) if not symbol.defined}


def demangle(names):
    """The names as C++ writes them, in the same order."""
    text = subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True,
                          check=True).stdout
    return text.splitlines()


def host_services(header):
    """Names of the functions that kx_host.h declares."""
    with open(header, encoding="utf-8") as file:
        return sorted(set(re.findall(r"\b(Kx\w+__\w+)\(", re.sub(r"//.*", "", file.read()))))
