autocmd BufNewFile,BufRead *.orv setfiletype orvane
