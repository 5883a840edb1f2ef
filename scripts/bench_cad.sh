#!/usr/bin/env bash
# `orvane mesh` against OpenCASCADE on every CAD file of a folder, in one run, at 1% of each
# file's box diagonal: orvane on one core (taskset -c 0) and on all cores, OpenCASCADE's reader
# plus BRepMesh_IncrementalMesh (angle 0.5 rad) sequential and in its parallel mode. Prints the
# seconds and the ratios per file and for the sum. Builds what it needs in build/bench-cad.
#
# usage: scripts/bench_cad.sh [FOLDER]    (default ../shared/cad-samples beside the repository)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
folder="${1:-$root/../shared/cad-samples}"
dir="$root/build/bench-cad"
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -DNDEBUG" \
    "${launcher[@]}" >/dev/null
cmake --build "$dir" --parallel "$(nproc)" --target orvane_tool bench_occt_mesh >/dev/null

echo "$(nproc) cores: $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ *//')"
python3 - "$dir/orvane" "$dir/bench/bench_occt_mesh" "$folder" <<'PY'
import os, subprocess, sys, tempfile, time

orvane, occt, folder = sys.argv[1:4]
share = 0.01
out = os.path.join(tempfile.mkdtemp(), 'mesh.obj')

def timed(cmd):
    start = time.monotonic()
    done = subprocess.run(cmd, capture_output=True, text=True)
    return time.monotonic() - start, done

rows = []
for name in sorted(os.listdir(folder)):
    if os.path.splitext(name)[1].lower() not in ('.stp', '.step', '.igs', '.iges'):
        continue
    path = os.path.join(folder, name)
    _, ref = timed([occt, path, str(share)])
    if ref.returncode != 0:
        print(f'{name}: OpenCASCADE failed: {ref.stderr.strip()}')
        continue
    diag, read, seq, par, _ = ref.stdout.strip().splitlines()[-1].split()
    read, seq, par = float(read), float(seq), float(par)
    mesh = [orvane, 'mesh', path, '-o', out, '--tolerance', repr(share * float(diag))]
    one, r1 = timed(['taskset', '-c', '0'] + mesh)
    every, rn = timed(mesh)
    failed = [r.stderr.strip().splitlines()[-1] for r in (r1, rn) if r.returncode != 0 and r.stderr.strip()]
    rows.append((name, read, seq, par, one, every, '; '.join(failed)))

head = f"{'file':34} {'occt read':>9} {'mesh 1':>7} {'mesh N':>7} {'orvane 1':>9} {'orvane N':>9} {'ratio 1':>8} {'ratio N':>8}"
print(head)
def line(name, read, seq, par, one, every, note=''):
    print(f'{name:34} {read:9.3f} {seq:7.3f} {par:7.3f} {one:9.3f} {every:9.3f} '
          f'{one / (read + seq):8.2f} {every / (read + par):8.2f} {note}')
for row in rows:
    line(*row)
if rows:
    line('sum', *(sum(r[k] for r in rows) for k in range(1, 6)))
print('ratio 1: orvane on one core / (read + sequential BRepMesh); '
      'ratio N: orvane on all cores / (read + parallel BRepMesh)')
PY
