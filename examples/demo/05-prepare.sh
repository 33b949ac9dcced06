#!/bin/sh
# A fresh copy of the sample device to work in, as some of the steps write.
set -eu

rm -rf build/demo/device
mkdir -p build/demo
cp -R examples/device build/demo/device
