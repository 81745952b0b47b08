#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints for each source of a build its path and a key made of all that a reading of it depends on.

The key is the same in every clone: of clang-tidy and how it is called, of its settings and
headers, of the command lines that compile the source, and of the bytes of every file that the
compiler read for it.
"""
import functools
import hashlib
import json
import os
import re
import subprocess
import sys

root, build = map(os.path.realpath, sys.argv[1:3])
call = sys.argv[3:]


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


@functools.lru_cache(maxsize=None)
def digest(path):
    with open(path, 'rb') as file:
        return hashlib.sha256(file.read()).hexdigest()


def files_read():
    """The files that the compiler read for each object, as the build noted them."""
    read = {}
    for line in output('ninja', '-C', build, '-t', 'deps').splitlines():
        if line.startswith(' '):
            read[target].append(os.path.realpath(os.path.join(build, line.strip())))
        elif ': #deps' in line:
            target = line.split(': #deps')[0]
            read[target] = []
    return read


def main():
    settings = output('git', '-C', root, 'ls-files', '--cached', '--others', '--exclude-standard',
                      '*.clang-tidy', 'scripts/lint/').split()
    common = [output(call[0], '--version'), *call[1:]]
    common += [f'{name} {digest(os.path.join(root, name))}' for name in sorted(settings)]

    read = files_read()
    for name in sorted(read):
        if name.endswith('.gch'):  # notes the headers in it, which no test's own note does
            common += [f'{path} {digest(path)}' for path in read[name]]
    parts = {}
    with open(os.path.join(build, 'compile_commands.json'), encoding='utf-8') as file:
        for entry in json.load(file):
            own = parts.setdefault(entry['file'], [])
            own.append(entry['command'])
            noted = read.get(entry['command'].split(' -o ')[1].split(' ')[0])
            if noted:
                own.extend(f'{path} {digest(path)}' for path in noted)
            else:  # a key that is never met again, so that the source is read
                own.append(os.urandom(16).hex())
    for source, own in parts.items():
        text = re.sub(re.escape(root) + r'(?![\w.-])', '', '\n'.join(common + own))
        print(hashlib.sha256(text.encode()).hexdigest(), os.path.relpath(source, root))


main()
