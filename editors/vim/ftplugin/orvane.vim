if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1
setlocal commentstring=;\ %s comments=:;,:/
" :make shows what is wrong with the script.
setlocal makeprg=orvane\ check\ %:S
setlocal errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m
let b:undo_ftplugin = 'setlocal commentstring< comments< makeprg< errorformat<'
