'use strict';
const { workspace } = require('vscode');
const { LanguageClient } = require('vscode-languageclient/node');

let client;

exports.activate = () => {
  const settings = workspace.getConfiguration('orvane');
  client = new LanguageClient(
    'orvane',
    'Orvane',
    { command: settings.get('command'), args: ['lsp', ...settings.get('arguments')] },
    { documentSelector: [{ language: 'orvane' }] },
  );
  return client.start();
};

exports.deactivate = () => client?.stop();
