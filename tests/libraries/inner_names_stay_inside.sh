#!/bin/sh
# inner_names_stay_inside.sh library...: fails when a shared library exports or imports a name of namespace kt. An import
# appears when a function that is cloned for several processors is declared to other files; programs then fail to link.
names=$(nm -D "$@" | grep -E ' _ZNK?2kt' | grep -v '\.resolver$')
[ -z "$names" ] || { echo "$names" | c++filt; exit 1; }
