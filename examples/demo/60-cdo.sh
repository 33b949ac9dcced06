#!/bin/sh
# A script of sequence commands: markers that nest as brackets do, and numbers as a user types them.
set -eu

echo "$ hbs cdo examples/device/sequence.cdo"
# Ends with 1, as the script shows wrong lines, too.
hbs cdo examples/device/sequence.cdo || [ $? -eq 1 ]
