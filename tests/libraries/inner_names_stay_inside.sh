#!/bin/sh
# inner_names_stay_inside.sh library...: fails when a shared library exports or imports a name of namespace kt: a function,
# a variable, or what the compiler makes for one (tables of virtual functions, type information, guards, thunks). An import
# appears when a function that is cloned for several processors is declared to other files; programs then fail to link.
for library in "$@"; do
  names=$(nm -D "$library") && [ -n "$names" ] || { echo "no names in $library"; exit 1; }
  inner=$(echo "$names" | grep -E ' _Z(Z|T[A-Zchv][n0-9_]*|G[A-Z])*N[rVKRO]*2kt' | grep -v '\.resolver$')
  [ -z "$inner" ] || { echo "$inner" | c++filt; exit 1; }
done
