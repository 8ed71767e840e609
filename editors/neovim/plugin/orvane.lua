-- Starts the language server for card scripts: one for all of them.
local client

local function start(buffer)
  local config = { name = 'orvane', cmd = vim.g.orvane_lsp or { 'orvane', 'lsp' }, root_dir = vim.fn.getcwd() }
  if vim.lsp.start then
    vim.lsp.start(config, { bufnr = buffer })
    return
  end
  if not client or vim.lsp.client_is_stopped(client) then
    client = vim.lsp.start_client(config)
  end
  if client then vim.lsp.buf_attach_client(buffer, client) end
end

vim.api.nvim_create_autocmd('FileType', {
  pattern = 'orvane',
  callback = function(event)
    vim.bo[event.buf].omnifunc = 'v:lua.vim.lsp.omnifunc'
    start(event.buf)
  end,
})
