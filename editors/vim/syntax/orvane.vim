if exists('b:current_syntax')
  finish
endif
syntax case ignore
syntax match orvaneVariable /%[^ \t(),=]*/
syntax match orvaneCall /@\(strmidh\?\|strlenh\?\|xor\|asc2hex\|hex2asc\|des\|descbc\|mac\|subkey\|rsapubenc\|hash\|compare\|setreader\|setslot\|openreader\|reset\|stop\)\ze[ \t]*(/
syntax match orvaneHex /\(^\|[ \t(,=]\)\@1<=\x\+\ze\([ \t),]\|$\)/
syntax match orvaneComment /^[ \t]*[;\/].*/ contains=orvaneExpect
syntax match orvaneExpect /^[ \t]*;[ \t]*expect\>.*/ contained contains=orvaneVariable
syntax match orvaneHeading /^[ \t]*\$.*/
highlight default link orvaneVariable Identifier
highlight default link orvaneCall Function
highlight default link orvaneHex Number
highlight default link orvaneComment Comment
highlight default link orvaneExpect PreProc
highlight default link orvaneHeading Title
let b:current_syntax = 'orvane'
