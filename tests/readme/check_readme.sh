#!/bin/sh
# check_readme.sh SOURCE_DIR BIN_DIR
# Works in a folder of its own that looks like the root of a checkout in which the demo has run.
set -eu
source_dir=$1 bin_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
ln -s "$source_dir/examples" examples
mkdir -p build/release
ln -s "$bin_dir" build/release/bin
PATH=$bin_dir:$PATH
export PATH

for step in examples/demo/*.sh; do
    [ -f "$step" ] || continue
    echo "== $step"
    sh "$step"
done

# A shown command is an indented line that starts with the program's path.
sed -n 's/^ \{4\}\(.*build\/release\/bin\/hbs .*\)$/\1/p' "$source_dir/README.md" >commands
while IFS= read -r command; do
    echo "== $command"
    sh -c "$command" </dev/null
done <commands
