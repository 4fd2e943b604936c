"""What the zip says about itself: notices and licences of what others have written, an SBOM (SPDX 2.3), SHA-256 sums.

describe.py FOLDER VERSION PRIVATE-FOLDER-OF-SETUP
SOURCE_DATE_EPOCH is the time in it.
"""
import datetime
import hashlib
import json
import os
import re
import subprocess
import sys
import uuid

folder, version, deps = sys.argv[1:]
notices = 'THIRD-PARTY-NOTICES.txt'
sbom = f'VekLib-{version}.spdx.json'
sums = 'SHA256SUMS'


def read(path):
    with open(path, encoding='utf-8', errors='strict') as file:
        return file.read()


def write(name, text):
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, 'w', encoding='utf-8', newline='\n') as file:
        file.write(text)


def package_version(package):
    return subprocess.run(['dpkg-query', '-W', '-f', '${Version}', package], check=True, capture_output=True, text=True).stdout


def found(pattern, path):
    match = re.findall(pattern, read(path), re.M)
    assert match, f'{path} has no {pattern}'
    return '.'.join(match)


def doc(package):
    return f'/usr/share/doc/{package}/copyright'


# id, name, version, licence, which files have code of it, what it is to them, the licence's text
components = [
    ('expat', 'expat', found(r'define XML_M[A-Z]+_VERSION (\d+)', f'{deps}/expat-source/lib/expat.h'), 'MIT',
     r'bin/.*/VekLib\.dll', 'the XML parser, linked in', f'{deps}/expat-source/COPYING'),
    ('cli11', 'CLI11', found(r'define CLI11_VERSION "([0-9.]+)"', '/usr/include/CLI/Version.hpp'), 'BSD-3-Clause',
     r'bin/.*/vek.*\.exe', 'the command line parser, compiled in', doc('libcli11-dev')),
    ('gcc-runtime', 'libgcc and libstdc++', package_version('g++-mingw-w64-i686-posix'), 'GPL-3.0-or-later WITH GCC-exception-3.1',
     r'bin/.*-gnu/.*\.(dll|exe)', "the compiler's runtime, linked in; its Runtime Library Exception lets it go along under any terms",
     doc('g++-mingw-w64-i686-posix')),
    ('mingw-w64', 'MinGW-w64 runtime and winpthreads', package_version('mingw-w64-i686-dev'), 'NOASSERTION',
     r'bin/.*-gnu/.*\.(dll|exe)', 'start-up code and threads, linked in', doc('mingw-w64-i686-dev')),
    ('libcxx', 'libc++', package_version('libc++-19-dev'), 'Apache-2.0 WITH LLVM-exception',
     r'bin/.*-msvc/VekLib\.dll', "the C++ library, whose headers' code is compiled in", doc('libc++-19-dev')),
]


def write_notices():
    text = ('VekLib uses works of others. Which, where, and under what terms; the licences stand in full in licences/,\n'
            'as their packages have them.\n')
    for key, name, number, licence, files, what, source in components:
        write(f'licences/{key}.txt', read(source))
        where = [file for file in all_files() if re.fullmatch(files, file)]
        assert where, f'nothing has {name}'
        told = 'see its text' if licence == 'NOASSERTION' else licence
        text += f'\n{name} {number}\n    {what}\n    {", ".join(where)}\n    {told}: licences/{key}.txt\n'
    write(notices, text)


def all_files():
    names = []
    for base, _, files in os.walk(folder):
        names += [os.path.relpath(os.path.join(base, name), folder) for name in files]
    return sorted(names)


def digest(name, kind):
    with open(os.path.join(folder, name), 'rb') as file:
        return hashlib.new(kind, file.read()).hexdigest()


def package(key, name, number, licence, purpose='LIBRARY', **more):
    return {'SPDXID': f'SPDXRef-{key}', 'name': name, 'versionInfo': number, 'downloadLocation': 'NOASSERTION',
            'filesAnalyzed': False, 'licenseConcluded': 'NOASSERTION', 'licenseDeclared': licence,
            'copyrightText': 'NOASSERTION', 'primaryPackagePurpose': purpose, **more}


def write_sbom():
    relations = [('SPDXRef-DOCUMENT', 'DESCRIBES', 'SPDXRef-VekLib')]
    packages = [package(key, name, number, licence) for key, name, number, licence, _, _, _ in components]
    files, hashes = [], []
    for number, name in enumerate(name for name in all_files() if name not in (sbom, sums)):
        key = f'SPDXRef-File-{number}'
        hashes.append(digest(name, 'sha1'))
        files.append({'SPDXID': key, 'fileName': './' + name, 'licenseConcluded': 'NOASSERTION',
                      'licenseInfoInFiles': ['NOASSERTION'], 'copyrightText': 'NOASSERTION',
                      'checksums': [{'algorithm': 'SHA1', 'checksumValue': hashes[-1]},
                                    {'algorithm': 'SHA256', 'checksumValue': digest(name, 'sha256')}]})
        relations.append(('SPDXRef-VekLib', 'CONTAINS', key))
        relations += [(key, 'STATIC_LINK', f'SPDXRef-{component[0]}') for component in components
                      if re.fullmatch(component[4], name)]
    # Nothing of them is in the files but what they have made.
    for tool, label in (('g++-mingw-w64-i686-posix', 'GCC'), ('g++-mingw-w64-x86-64-posix', 'GCC for 64 bits'), ('clang-19', 'clang'),
                        ('lld-19', 'lld'), ('libwine-dev', 'declarations of the Windows API'), ('cmake', 'CMake')):
        key = 'Tool-' + re.sub('[^A-Za-z0-9.-]', '-', tool)
        packages.append(package(key, f'{label} ({tool})', package_version(tool), 'NOASSERTION', 'APPLICATION'))
        relations.append((f'SPDXRef-{key}', 'BUILD_TOOL_OF', 'SPDXRef-VekLib'))
    code = hashlib.sha1(''.join(sorted(hashes)).encode()).hexdigest()
    own = package('VekLib', 'VekLib', version, 'NOASSERTION', filesAnalyzed=True, licenseInfoFromFiles=['NOASSERTION'],
                  packageVerificationCode={'packageVerificationCodeValue': code,
                                           'packageVerificationCodeExcludedFiles': ['./' + sbom, './' + sums]})
    time = datetime.datetime.fromtimestamp(int(os.environ['SOURCE_DATE_EPOCH']), datetime.timezone.utc)
    document = {
        'spdxVersion': 'SPDX-2.3', 'dataLicense': 'CC0-1.0', 'SPDXID': 'SPDXRef-DOCUMENT', 'name': f'VekLib-{version}-windows',
        'documentNamespace': f'urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, f"VekLib {version} {code}")}',
        'creationInfo': {'created': time.strftime('%Y-%m-%dT%H:%M:%SZ'), 'creators': ['Tool: package.sh']},
        'packages': [own] + packages, 'files': files,
        'relationships': [{'spdxElementId': a, 'relationshipType': kind, 'relatedSpdxElement': b} for a, kind, b in relations]}
    write(sbom, json.dumps(document, indent=1) + '\n')


write_notices()
write_sbom()
write(sums, ''.join(f'{digest(name, "sha256")}  {name}\n' for name in all_files() if name != sums))
