# Plain comments become documentation. Doxygen would take backslashes, @, #, %, < and the like for commands, so they are
# escaped, except in examples, which stand three blanks or more behind the slashes.

# A comment on lines of its own; not inside function bodies, where it is harmless anyway.
/^ *\/\/ {3,}/ {
  s/^( *)\/\/ {3}/\1\/\/\/     /
  b
}
/^ *\/\/( |$)/ {
  s/^( *)\/\//\1\/\/\/\n/
  h
  s/\n.*//
  x
  s/^[^\n]*\n//
  s/[\\@#%<>&$*`"]/\\&/g
  x
  G
  s/\n//
  b
}
# A comment behind a declaration.
s/^(.*[;,})] *|.*[A-Za-z0-9_] +)\/\/ (.*)$/\1\/\/\/< \n\2/
t behind
b
:behind
h
s/\n.*//
x
s/^[^\n]*\n//
s/[\\@#%<>&$*`"]/\\&/g
x
G
s/\n//
