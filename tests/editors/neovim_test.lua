-- A person who writes a script in Neovim. Its runtime path has the folders of editors/.
local function fail(text)
  io.stderr:write(text .. '\n')
  vim.cmd('cquit')
end

local function wait(what, met)
  if not vim.wait(20000, met, 20) then fail(what .. ' is missing') end
end

vim.g.orvane_lsp = { os.getenv('ORVANE'), 'lsp' }
vim.cmd('filetype plugin on')
vim.cmd('syntax on')
vim.cmd('edit script.orv')
if vim.bo.filetype ~= 'orvane' then fail('no file type') end
vim.api.nvim_buf_set_lines(0, 0, -1, false, { '$ Wake', '@compare(😀ü, %NO, 0)', '00A40400 00', '%RESP' })
local function found() return vim.diagnostic.get(0) end
wait('a diagnostic', function() return #found() == 1 and found()[1].message:match('undefined variable %%NO') end)
-- Neovim counts octets.
if found()[1].lnum ~= 1 or found()[1].col ~= 17 then fail(vim.inspect(found())) end

local function ask(method, line, character)
  local parameters = vim.lsp.util.make_position_params()
  parameters.position = { line = line, character = character }
  local answers = vim.lsp.buf_request_sync(0, method, parameters, 20000)
  return vim.inspect(select(2, next(answers)).result)
end
local function expect(text, part)
  if not text:find(part, 1, true) then fail(part .. ' is missing in ' .. text) end
end
expect(ask('textDocument/completion', 3, 2), '%RESP')
expect(ask('textDocument/hover', 2, 0), 'SELECT')
expect(ask('textDocument/documentSymbol', 0, 0), 'Wake')

-- While one types.
vim.api.nvim_buf_set_lines(0, 1, 2, false, { '%NO = 00A40000', '@compare(1, %NO, 0)' })
wait('the end of the diagnostic', function() return #found() == 0 end)
expect(ask('textDocument/definition', 2, 15), 'line = 1')
local highlight = vim.fn.synIDattr(vim.fn.synID(2, 2, 1), 'name')
if highlight ~= 'orvaneVariable' then fail('highlighted as ' .. highlight) end
local clients = vim.lsp.get_active_clients()
vim.lsp.stop_client(clients)
wait('the end of the server', function() return #vim.lsp.get_active_clients() == 0 end)
vim.cmd('quit!')
